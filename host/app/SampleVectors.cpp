#include "host/app/SampleVectors.h"

#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/app/SampleLasFile.h"
#include "host/dem/HostGdal.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;

/// Metres from the sample area's corner.
struct Place {
    double x;
    double y;
};

double HeightAt(const Place& place) {
    return SampleTerrainAt(std::llround(place.x), std::llround(place.y)).height;
}

struct Building {
    const char* name;
    Place corner;
    double width;
    double depth;
    int floors;
    const char* built;
};
constexpr Building kBuildings[] = {{"School", {120, 250}, 60, 24, 3, "1972/05/01"},
                                   {"Town hall", {220, 300}, 30, 40, 4, "1898/10/15"},
                                   {"M\u00FChle", {330, 120}, 18, 14, 2, "1790/01/01"},
                                   {"Depot", {450, 280}, 70, 36, 1, "2004/03/20"},
                                   {"Pump house", {520, 60}, 10, 8, 1, "2016/07/09"}};

/// A winding road from west to east.
std::vector<Place> Road(double south, double swing) {
    std::vector<Place> road;
    for (double x = 0; x <= 600; x += 20) {
        road.push_back({x, south + swing * std::sin(x / 90)});
    }
    return road;
}

[[noreturn]] void Fail(const fs::path& path, const GdalErrorScope& errors) {
    throw LDataError(FromPath(path) + L": " + FromUtf8(errors.Text()));
}

void WriteText(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.flush()) {
        throw LDataError(FromPath(path));
    }
}

struct SampleField {
    const char* name;
    OGRFieldType type;
};

/// Writes shapefiles in one CRS.
class ShapefileMaker {
  public:
    ShapefileMaker(fs::path folder, double west, double south, int epsg)
        : folder_(std::move(folder)), west_(west), south_(south) {
        crs_.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        crs_.importFromWkt(OrvexUtilities::CrsGetPrettyWktFromEPSG(epsg).c_str());
    }

    const OGRSpatialReference& Crs() const { return crs_; }

    OGRPoint PointAt(const Place& place) const {
        return {west_ + place.x, south_ + place.y, HeightAt(place)};
    }

    /// `fill` adds the features; each has its geometry and the fields.
    void Write(const char* name, OGRwkbGeometryType type, const std::vector<SampleField>& fields,
               const std::function<void(OGRLayer& layer)>& fill) {
        const GdalErrorScope errors;
        const fs::path path = folder_ / name;
        GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
        const GDALDatasetUniquePtr dataset(driver == nullptr ? nullptr
                                                             : driver->Create(ToUtf8(FromPath(path)).c_str(),
                                                                              0, 0, 0, GDT_Unknown, nullptr));
        const GdalList options({"ENCODING=UTF-8"});
        OGRLayer* const layer = dataset == nullptr
                                    ? nullptr
                                    : dataset->CreateLayer(path.stem().string().c_str(), &crs_, type,
                                                           const_cast<char**>(options.Get()));
        if (layer == nullptr) {
            Fail(path, errors);
        }
        for (const SampleField& field : fields) {
            OGRFieldDefn definition(field.name, field.type);
            layer->CreateField(&definition);
        }
        fill(*layer);
        if (errors.HasError()) {
            Fail(path, errors);
        }
    }

  private:
    fs::path folder_;
    double west_;
    double south_;
    OGRSpatialReference crs_;
};

void Add(OGRFeature& feature, const OGRGeometry& geometry, OGRLayer& layer) {
    feature.SetGeometry(&geometry);
    if (layer.CreateFeature(&feature) != OGRERR_NONE) {
        throw LDataError(FromUtf8(layer.GetName()));
    }
}

OGRPolygon Outline(const ShapefileMaker& maker, const Building& building) {
    const auto& [x, y] = building.corner;
    OGRLinearRing ring;
    for (const Place& corner :
         {Place{x, y}, Place{x, y + building.depth}, Place{x + building.width, y + building.depth},
          Place{x + building.width, y}, Place{x, y}}) {
        const OGRPoint point = maker.PointAt(corner);
        ring.addPoint(point.getX(), point.getY());
    }
    OGRPolygon polygon;
    polygon.addRing(&ring);
    return polygon;
}

void WriteBuildings(ShapefileMaker& maker) {
    maker.Write("buildings.shp", wkbPolygon,
                {{"NAME", OFTString}, {"FLOORS", OFTInteger}, {"BUILT", OFTDate}}, [&](OGRLayer& layer) {
                    for (const Building& building : kBuildings) {
                        OGRFeature feature(layer.GetLayerDefn());
                        feature.SetField("NAME", building.name);
                        feature.SetField("FLOORS", building.floors);
                        feature.SetField("BUILT", building.built);
                        Add(feature, Outline(maker, building), layer);
                    }
                });
}

void WriteRoads(ShapefileMaker& maker) {
    maker.Write("roads.shp", wkbLineString25D, {{"CLASS", OFTString}, {"WIDTH", OFTReal}},
                [&](OGRLayer& layer) {
                    for (const auto& [name, south] : {std::pair("main", 200.0), std::pair("track", 80.0)}) {
                        OGRLineString line;
                        for (const Place& place : Road(south, south / 6)) {
                            const OGRPoint point = maker.PointAt(place);
                            line.addPoint(&point);
                        }
                        OGRFeature feature(layer.GetLayerDefn());
                        feature.SetField("CLASS", name);
                        feature.SetField("WIDTH", south / 25);
                        Add(feature, line, layer);
                    }
                });
}

void WriteWells(ShapefileMaker& maker) {
    maker.Write("wells.shp", wkbPoint25D, {{"ID", OFTInteger}, {"DEPTH", OFTReal}}, [&](OGRLayer& layer) {
        for (int i = 0; i < 24; ++i) {
            const OGRPoint point =
                maker.PointAt({30.0 + 95 * (i % 6), 30.0 + 90 * static_cast<int>(i / 6) + 17 * (i % 3)});
            OGRFeature feature(layer.GetLayerDefn());
            feature.SetField("ID", i + 1);
            feature.SetField("DEPTH", 4.5 + i * 0.25);
            Add(feature, point, layer);
        }
    });
}

/// A drawing's entity at a place. `rest` is made of further pairs of group codes and values.
std::string Entity(const char* kind, const char* layer, const OGRPoint& at, const std::string& rest = {}) {
    return fmt::format("0\n{}\n8\n{}\n10\n{:.3f}\n20\n{:.3f}\n30\n{:.3f}\n{}", kind, layer, at.getX(),
                       at.getY(), at.getZ(), rest);
}

std::string Drawing(const ShapefileMaker& maker) {
    std::string entities;
    for (int i = 0; i < 12; ++i) {
        const Place place{25.0 + 50 * i, 340.0 + 25 * (i % 3)};
        entities += Entity("POINT", "SURVEY", maker.PointAt(place));
        entities += Entity("TEXT", "SURVEY", maker.PointAt({place.x + 4, place.y + 4}),
                           fmt::format("40\n6.0\n1\nP{}\n", i + 1));
    }
    const std::vector<Place> pipe = Road(150, 40);
    for (std::size_t i = 1; i < pipe.size(); ++i) {
        const OGRPoint to = maker.PointAt(pipe[i]);
        entities +=
            Entity("LINE", "PIPES", maker.PointAt(pipe[i - 1]),
                   fmt::format("11\n{:.3f}\n21\n{:.3f}\n31\n{:.3f}\n", to.getX(), to.getY(), to.getZ()));
    }
    for (const double x : {60.0, 260.0, 480.0}) {
        const OGRPoint middle = maker.PointAt({x, 60});
        entities += Entity("CIRCLE", "TANKS", middle, "40\n15.0\n");
        entities +=
            Entity("SOLID", "TANKS", maker.PointAt({x - 6, 54}),
                   fmt::format("11\n{0:.3f}\n21\n{2:.3f}\n12\n{1:.3f}\n22\n{3:.3f}\n13\n{0:.3f}\n23\n"
                               "{3:.3f}\n",
                               middle.getX() + 6, middle.getX() - 6, middle.getY() - 6, middle.getY() + 6));
    }
    return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

std::string EsriWkt(const OGRSpatialReference& crs) {
    const char* const options[] = {"FORMAT=WKT1_ESRI", nullptr};
    char* text = nullptr;
    crs.exportToWkt(&text, options);
    std::string wkt = text == nullptr ? "" : text;
    CPLFree(text);
    return wkt;
}

/// Sights and a walk between them, in degrees.
std::string Walk(const ShapefileMaker& maker) {
    OGRSpatialReference degrees;
    degrees.importFromEPSG(4326);
    degrees.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> toDegrees(
        OGRCreateCoordinateTransformation(&maker.Crs(), &degrees));
    std::string track;
    std::string sights;
    for (const Building& building : kBuildings) {
        OGRPoint point = maker.PointAt({building.corner.x - 5, building.corner.y - 5});
        if (toDegrees == nullptr || point.transform(toDegrees.get()) != OGRERR_NONE) {
            return {};
        }
        const std::string place =
            fmt::format("{:.8f},{:.8f},{:.2f}", point.getX(), point.getY(), point.getZ());
        track += place + " ";
        sights += fmt::format(
            "<Placemark><name>{}</name><Point><coordinates>{}</coordinates></Point>"
            "</Placemark>\n",
            building.name, place);
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n"
           "<Document><name>Walk</name>\n<Folder><name>Sights</name>\n" +
           sights + "</Folder>\n<Folder><name>Path</name>\n<Placemark><name>Walk</name><LineString>" +
           "<coordinates>" + track +
           "</coordinates></LineString></Placemark>\n</Folder>\n</Document></kml>\n";
}

}  // namespace

void WriteSampleVectors(const fs::path& folder, double west, double south, int epsg) {
    SetUpGdal();
    ShapefileMaker maker(folder, west, south, epsg);
    WriteBuildings(maker);
    WriteRoads(maker);
    WriteWells(maker);
    WriteText(folder / "site plan.dxf", Drawing(maker));
    WriteText(folder / "site plan.prj", EsriWkt(maker.Crs()));
    WriteText(folder / "walk.kml", Walk(maker));
}

}  // namespace orvex
