#include "host/app/SampleRasters.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
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

using Transform = std::array<double, 6>;
/// The values of all bands at one place.
using Values = std::array<double, 4>;
/// Gives them at a place of the landscape, metres from the sample area's corner.
using Paint = std::function<Values(double x, double y)>;

constexpr double kNodata = -9999;
constexpr double kPi = 3.14159265358979323846;

std::string Utf8(const fs::path& path) {
    return ToUtf8(FromPath(path));
}

/// Where a raster lies, and of what it is made.
struct Picture {
    int width;
    int height;
    Transform transform;
    GDALDataType type = GDT_Byte;
    int bands = 1;
    Paint paint;
};

/// North up, from its corner in metres of the landscape.
Transform NorthUp(double west, double north, double pixel) {
    return {west, pixel, 0, north, 0, -pixel};
}

/// Shade of a slope lit from the north-west, 0 to 1.
double Shade(double x, double y) {
    const auto height = [](double atX, double atY) {
        return SampleTerrainAt(std::llround(atX), std::llround(atY)).height;
    };
    const double slope = (height(x + 2, y) - height(x - 2, y)) - (height(x, y + 2) - height(x, y - 2));
    return std::clamp(0.75 + 0.035 * slope, 0.5, 1.0);
}

SampleTerrain TerrainNear(double x, double y) {
    return SampleTerrainAt(std::llround(x), std::llround(y));
}

Values TrueColour(double x, double y) {
    constexpr Values kWater = {62, 104, 142};
    constexpr Values kTrees = {58, 104, 52};
    constexpr Values kGround = {176, 168, 118};
    const SampleTerrain terrain = TerrainNear(x, y);
    if (terrain.isWater) {
        return kWater;
    }
    const double shade = Shade(x, y);
    Values colour = terrain.isTree ? kTrees : kGround;
    std::ranges::transform(colour, colour.begin(), [shade](double part) { return part * shade; });
    return colour;
}

Values Infrared(double x, double y) {
    const SampleTerrain terrain = TerrainNear(x, y);
    return {terrain.isWater ? 800 : (terrain.isTree ? 21000 : 11000) * Shade(x, y)};
}

/// Palette of the map: ground, contour, water, trees.
Values MapClass(double x, double y) {
    const SampleTerrain terrain = TerrainNear(x, y);
    if (terrain.isWater || terrain.isTree) {
        return {terrain.isWater ? 2.0 : 3.0};
    }
    return {std::fmod(terrain.height, 10) < 0.9 ? 1.0 : 0.0};
}

/// Colours that fade out towards the rim of a disc.
Values Disc(double x, double y) {
    Values colour = TrueColour(x, y);
    colour[3] = std::clamp((100 - std::hypot(x - 700, y - 300)) * 12, 0.0, 255.0);
    return colour;
}

Values Height(double x, double y) {
    const SampleTerrain terrain = TerrainNear(x, y);
    return {terrain.isWater ? kNodata : terrain.height};
}

Values Relief(double x, double y) {
    return {235 * Shade(x, y)};
}

[[noreturn]] void Fail(const GdalErrorScope& errors, const fs::path& path) {
    throw LDataError(FromPath(path) + L": " + FromUtf8(errors.Text()));
}

GDALDriver& DriverNamed(const char* name) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(name);
    if (driver == nullptr) {
        throw LDataError(FromUtf8(name));
    }
    return *driver;
}

/// The picture in memory, its places relative to the landscape's corner.
GDALDatasetUniquePtr Render(const Picture& picture) {
    GDALDatasetUniquePtr memory(
        DriverNamed("MEM").Create("", picture.width, picture.height, picture.bands, picture.type, nullptr));
    if (memory == nullptr) {
        throw LDataError(L"MEM");
    }
    const auto width = static_cast<std::size_t>(picture.width);
    std::vector<std::vector<double>> rows(static_cast<std::size_t>(picture.bands),
                                          std::vector<double>(width));
    for (int y = 0; y < picture.height; ++y) {
        for (std::size_t column = 0; column < width; ++column) {
            const auto& t = picture.transform;
            const double x = static_cast<double>(column) + 0.5;
            const Values values =
                picture.paint(t[0] + x * t[1] + (y + 0.5) * t[2], t[3] + x * t[4] + (y + 0.5) * t[5]);
            for (std::size_t band = 0; band < rows.size(); ++band) {
                rows[band][column] = values[band];
            }
        }
        for (int band = 0; band < picture.bands; ++band) {
            if (memory->GetRasterBand(band + 1)->RasterIO(GF_Write, 0, y, picture.width, 1,
                                                          rows[static_cast<std::size_t>(band)].data(),
                                                          picture.width, 1, GDT_Float64, 0, 0) != CE_None) {
                throw LDataError(L"MEM");
            }
        }
    }
    return memory;
}

enum class Georeference { None, WithoutCrs, Full };

/// Puts what was rendered where the sample area lies.
class Placer {
  public:
    Placer(double west, double south, int epsg) : west_(west), south_(south) {
        crs_.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        crs_.importFromWkt(OrvexUtilities::CrsGetPrettyWktFromEPSG(epsg).c_str());
    }

    void Place(GDALDataset& dataset, const Picture& picture, Georeference georeference) const {
        if (georeference == Georeference::None) {
            return;
        }
        Transform placed = picture.transform;
        placed[0] += west_;
        placed[3] += south_;
        dataset.SetGeoTransform(placed.data());
        if (georeference == Georeference::Full) {
            dataset.SetSpatialRef(&crs_);
        }
    }

  private:
    double west_;
    double south_;
    OGRSpatialReference crs_;
};

void Save(GDALDataset& picture, const fs::path& path, const char* driver,
          const std::vector<const char*>& options) {
    const GdalErrorScope errors;
    std::vector<const char*> ended = options;
    ended.push_back(nullptr);
    const GDALDatasetUniquePtr saved(DriverNamed(driver).CreateCopy(
        Utf8(path).c_str(), &picture, FALSE, const_cast<char**>(ended.data()), nullptr, nullptr));
    if (saved == nullptr || errors.HasError()) {
        Fail(errors, path);
    }
}

void AddOverviews(const fs::path& path) {
    const GdalErrorScope errors;
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(Utf8(path).c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    std::array<int, 2> levels = {2, 4};
    if (dataset == nullptr ||
        dataset->BuildOverviews("AVERAGE", static_cast<int>(levels.size()), levels.data(), 0, nullptr,
                                nullptr, nullptr) != CE_None) {
        Fail(errors, path);
    }
}

void NameColours(GDALDataset& dataset) {
    constexpr std::array kMeanings = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand, GCI_AlphaBand};
    for (int band = 0; band < dataset.GetRasterCount(); ++band) {
        dataset.GetRasterBand(band + 1)->SetColorInterpretation(kMeanings[static_cast<std::size_t>(band)]);
    }
}

void AddPalette(GDALDataset& dataset) {
    GDALColorTable colours;
    const GDALColorEntry entries[] = {
        {250, 246, 232, 255}, {178, 134, 92, 255}, {150, 196, 226, 255}, {196, 222, 176, 255}};
    for (int i = 0; i < 4; ++i) {
        colours.SetColorEntry(i, &entries[i]);
    }
    dataset.GetRasterBand(1)->SetColorTable(&colours);
}

void MarkNoData(GDALDataset& dataset) {
    dataset.GetRasterBand(1)->SetNoDataValue(kNodata);
}

/// One raster of the sample.
struct Sample {
    const char* name;
    const char* driver;
    Picture picture;
    std::vector<const char*> options;
    void (*describe)(GDALDataset& dataset) = nullptr;
    Georeference georeference = Georeference::Full;
};

void Write(const fs::path& folder, const Placer& placer, const std::vector<Sample>& samples) {
    for (const Sample& sample : samples) {
        const auto memory = Render(sample.picture);
        placer.Place(*memory, sample.picture, sample.georeference);
        if (sample.describe != nullptr) {
            sample.describe(*memory);
        }
        Save(*memory, folder / sample.name, sample.driver, sample.options);
    }
}

/// Turned by 20 degrees.
Transform Rotated(double west, double north, double pixel) {
    const double angle = 20 * kPi / 180;
    const double across = pixel * std::cos(angle);
    const double down = pixel * std::sin(angle);
    return {west, across, down, north, down, -across};
}

}  // namespace

void WriteSampleRasters(const fs::path& folder, double west, double south, int epsg) {
    SetUpGdal();
    const Picture relief{200, 200, NorthUp(600, 200, 1), GDT_Byte, 1, Relief};
    Write(folder, Placer(west, south, epsg),
          {{"orthophoto.tif",
            "GTiff",
            {1200, 800, NorthUp(0, 400, 0.5), GDT_Byte, 3, TrueColour},
            {"COMPRESS=DEFLATE", "TILED=YES", "PHOTOMETRIC=RGB"},
            NameColours},
           {"infrared 16 bit.tif",
            "GTiff",
            {200, 200, NorthUp(600, 200, 1), GDT_UInt16, 1, Infrared},
            {"COMPRESS=LZW"}},
           {"map.png",
            "PNG",
            {300, 200, NorthUp(200, 600, 1), GDT_Byte, 1, MapClass},
            {"WORLDFILE=YES"},
            AddPalette},
           {"rotated scan.tif", "GTiff", {240, 160, Rotated(540, 530, 0.8), GDT_Byte, 1, Relief}, {}},
           {"transparent big.tif",
            "GTiff",
            {200, 200, NorthUp(600, 400, 1), GDT_Byte, 4, Disc},
            {"BIGTIFF=YES", "COMPRESS=DEFLATE", "PHOTOMETRIC=RGB", "ALPHA=YES"},
            NameColours},
           {"no place.png", "PNG", relief, {}, nullptr, Georeference::None},
           {"no crs.tif", "GTiff", relief, {}, nullptr, Georeference::WithoutCrs}});
    AddOverviews(folder / "orthophoto.tif");
    fs::create_directories(folder / "damaged");
    fs::copy_file(folder / "orthophoto.tif", folder / "damaged" / "truncated.tif");
    fs::resize_file(folder / "damaged" / "truncated.tif", fs::file_size(folder / "orthophoto.tif") / 2);
}

void WriteSampleElevation(const fs::path& folder, double west, double south, int epsg) {
    SetUpGdal();
    Write(folder, Placer(west, south, epsg),
          {{"terrain.bil", "EHdr", {200, 200, NorthUp(0, 600, 1), GDT_Float32, 1, Height}, {}, MarkNoData},
           {"text grid.asc",
            "AAIGrid",
            {100, 100, NorthUp(600, 600, 2), GDT_Float32, 1, Height},
            {"DECIMAL_PRECISION=2"},
            MarkNoData}});
}

}  // namespace orvex
