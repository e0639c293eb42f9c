#include "host/vector/VectorConversion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "host/dem/HostGdal.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;

/// An entity of a drawing as pairs of group codes and values, one a line.
std::string Dxf(const std::string& entities) {
    return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}
std::string Point(const std::string& layer, double x, double y, double z) {
    return "0\nPOINT\n8\n" + layer + "\n10\n" + std::to_string(x) + "\n20\n" + std::to_string(y) + "\n30\n" +
           std::to_string(z) + "\n";
}
std::string Line(const std::string& layer) {
    return "0\nLINE\n8\n" + layer + "\n10\n0\n20\n0\n30\n1\n11\n5\n21\n7\n31\n2\n";
}
std::string Face(const std::string& layer) {
    return "0\n3DFACE\n8\n" + layer +
           "\n10\n0\n20\n0\n30\n9\n11\n4\n21\n0\n31\n9\n12\n4\n22\n4\n32\n9\n13\n0\n23\n4\n33\n9\n";
}
std::string Label(const std::string& layer, const std::string& text) {
    return "0\nTEXT\n8\n" + layer + "\n10\n3\n20\n4\n30\n0\n40\n2.5\n50\n30\n1\n" + text + "\n";
}

std::string Kml(const std::string& placemarks) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><kml xmlns="http://www.opengis.net/kml/2.2"><Document><name>d</name>)" +
           placemarks + "</Document></kml>";
}

constexpr const char* kUtmPrj =
    R"(PROJCS["ETRS_1989_UTM_Zone_32N",GEOGCS["GCS_ETRS_1989",DATUM["D_ETRS_1989",SPHEROID["GRS_1980",6378137,298.257222101]],PRIMEM["Greenwich",0],UNIT["Degree",0.017453292519943295]],PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",9],PARAMETER["scale_factor",0.9996],PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["Meter",1]])";

/// A shapefile as GDAL reads it: a line per feature, fields and then geometry.
std::vector<std::string> Rows(const std::wstring& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_VECTOR));
    std::vector<std::string> rows;
    if (dataset == nullptr) {
        return {"unreadable"};
    }
    for (const auto& feature : dataset->GetLayer(0)) {
        std::string row;
        for (int i = 0; i < feature->GetFieldCount(); ++i) {
            row += std::string(feature->GetFieldDefnRef(i)->GetNameRef()) + "=" +
                   feature->GetFieldAsString(i) + " ";
        }
        OGRWktOptions withHeights;
        withHeights.variant = wkbVariantIso;
        rows.push_back(row + feature->GetGeometryRef()->exportToWkt(withHeights, nullptr));
    }
    return rows;
}

class VectorConversionTest : public ::testing::Test {
  protected:
    VectorConversionTest() {
        SetUpGdal();
        options_.outputFolder = folder_.Name(L"out");
    }

    std::optional<VectorConversionResult> Convert(const std::wstring& path) {
        Kst::NullProgress progress;
        return ConvertVector(path, options_, progress);
    }
    std::wstring FailureOf(const std::wstring& path) {
        try {
            Convert(path);
        } catch (const LDataError& error) {
            return error.Text();
        }
        return {};
    }
    /// Names in the output folder with an extension, sorted; of all files without one.
    std::vector<std::string> Names(const std::wstring& extension = {}) const {
        std::vector<std::string> names;
        ListFolder(options_.outputFolder, [&](const FolderEntry& entry) {
            if (extension.empty() || UpperExtensionOf(entry.path) == extension) {
                names.push_back(ToUtf8(FileNameOf(entry.path)));
            }
            return true;
        });
        std::ranges::sort(names);
        return names;
    }
    std::wstring Out(const std::wstring& name) const { return folder_.Name(L"out/" + name); }

    TemporaryFolder folder_;
    VectorConversionOptions options_;
};

using Texts = std::vector<std::string>;

TEST_F(VectorConversionTest, EachLayerAndKindOfADrawingBecomesAShapefile) {
    const std::wstring path =
        folder_.Write(L"in/Pl\u00E4ne.dxf", Dxf(Point("A", 1, 2, 3) + Line("A") + Point("a/b", 4, 5, 0) +
                                                Face("A") + Label("A", "H\xF6he") + Point("A", 6, 7, 8)));
    folder_.Write(L"in/Pl\u00E4ne.PRJ", kUtmPrj);
    const auto result = Convert(path);
    ASSERT_TRUE(result);
    EXPECT_EQ(Names(L".SHP"),
              (Texts{"Pl\u00E4ne_A_lines.shp", "Pl\u00E4ne_A_points.shp", "Pl\u00E4ne_A_polygons.shp",
                     "Pl\u00E4ne_A_text.shp", "Pl\u00E4ne_a_b_points.shp"}));
    EXPECT_EQ(Names().size(), 5U * 5U);
    const Texts points = Rows(Out(L"Pl\u00E4ne_A_points.shp"));
    ASSERT_EQ(points.size(), 2U);
    EXPECT_TRUE(points[0].starts_with("Layer=A ")) << points[0];
    EXPECT_TRUE(points[0].ends_with("POINT Z (1 2 3)")) << points[0];
    EXPECT_TRUE(Rows(Out(L"Pl\u00E4ne_A_lines.shp"))[0].ends_with("LINESTRING Z (0 0 1,5 7 2)"));
    EXPECT_NE(Rows(Out(L"Pl\u00E4ne_A_polygons.shp"))[0].find("POLYGON Z (("), std::string::npos);
    const Texts text = Rows(Out(L"Pl\u00E4ne_A_text.shp"));
    ASSERT_EQ(text.size(), 1U);
    EXPECT_TRUE(text[0].starts_with("TEXT=H\u00F6he HEIGHT=2.5")) << text[0];
    EXPECT_NE(text[0].find("ANGLE=30"), std::string::npos) << text[0];

    ASSERT_EQ(result->shapefiles.size(), 5U);
    const auto& first =
        *std::ranges::find(result->shapefiles, Out(L"Pl\u00E4ne_A_points.shp"), &ConvertedShapefile::path);
    EXPECT_EQ(first.count, 2U);
    EXPECT_EQ(first.shapeType, 11);
    EXPECT_EQ(first.extent, (std::array<double, 4>{1, 2, 6, 7}));
    EXPECT_NE(result->wkt.find("ETRS"), std::string::npos);
    EXPECT_NE(testing::ReadFile(Out(L"Pl\u00E4ne_A_points.prj")).find("ETRS"), std::string::npos);
    EXPECT_EQ(testing::ReadFile(Out(L"Pl\u00E4ne_A_points.cpg")), "UTF-8");
}

// From release 2007 on; and a last line without an end, behind which GDAL 3.6 reads on for ever.
TEST_F(VectorConversionTest, TextsOfNewDrawingsAreUtf8) {
    const std::string header = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1021\n0\nENDSEC\n";
    std::string drawing = header + Dxf(Point("B\u00E4ume", 1, 2, 3));
    drawing.pop_back();
    ASSERT_TRUE(Convert(folder_.Write(L"in/new.dxf", drawing)));
    EXPECT_EQ(Names(L".SHP"), (Texts{"new_B\u00E4ume_points.shp"}));
}

TEST_F(VectorConversionTest, ACoordinateSystemThatCannotBeReadIsTold) {
    folder_.Write(L"in/a.PRJ", std::string((std::size_t{1} << 20U) + 1, ' '));
    const auto result = Convert(folder_.Write(L"in/a.dxf", Dxf(Point("A", 1, 2, 3))));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->wkt, "");
    EXPECT_THAT(result->notes, ::testing::Contains(::testing::HasSubstr(L"(.prj)")));
}

TEST_F(VectorConversionTest, OnlyTheKindsThatAreWantedAreWritten) {
    struct Case {
        bool VectorConversionOptions::*wanted;
        const char* name;
    };
    const std::wstring path =
        folder_.Write(L"in/a.dxf", Dxf(Point("0", 1, 2, 3) + Line("0") + Face("0") + Label("0", "t")));
    for (const Case& c : {Case{&VectorConversionOptions::points, "a_0_points.shp"},
                          Case{&VectorConversionOptions::lines, "a_0_lines.shp"},
                          Case{&VectorConversionOptions::polygons, "a_0_polygons.shp"},
                          Case{&VectorConversionOptions::text, "a_0_text.shp"}}) {
        options_ = {false, false, false, false, folder_.Name(L"out " + FromUtf8(c.name))};
        options_.*c.wanted = true;
        ASSERT_TRUE(Convert(path));
        EXPECT_EQ(Names(L".SHP"), Texts{c.name});
    }
    options_ = {false, false, false, false, folder_.Name(L"none")};
    EXPECT_TRUE(Convert(path)->shapefiles.empty());
    EXPECT_EQ(Names(), Texts{});
}

TEST_F(VectorConversionTest, ThePartsOfAKmlFileGoWhereTheyBelong) {
    const std::wstring path = folder_.Write(
        L"in/a.kml",
        Kml("<Placemark><name>\u00E4</name><Style><LabelStyle><scale>2</scale></LabelStyle></Style>"
            "<Point><coordinates>9,48,300</coordinates></Point></Placemark>"
            "<Placemark><name>all</name><MultiGeometry><Point><coordinates>1,2</coordinates></Point>"
            "<Point><coordinates>3,4</coordinates></Point>"
            "<LineString><coordinates>0,0 1,1</coordinates></LineString>"
            "<Polygon><outerBoundaryIs><LinearRing><coordinates>0,0 0,1 1,1 0,0</coordinates></LinearRing>"
            "</outerBoundaryIs></Polygon></MultiGeometry></Placemark><Placemark><name>none</name></Placemark>"
            "<NetworkLink><Link><href>other.kml</href></Link></NetworkLink>"));
    folder_.Write(L"in/other.kml",
                  Kml("<Placemark><Point><coordinates>5,5</coordinates></Point></Placemark>"));
    ASSERT_TRUE(Convert(path));
    EXPECT_EQ(Names(L".SHP"), (Texts{"a_d_lines.shp", "a_d_points.shp", "a_d_polygons.shp"}));
    const Texts points = Rows(Out(L"a_d_points.shp"));
    ASSERT_EQ(points.size(), 3U);
    EXPECT_TRUE(points[0].starts_with("Name=\u00E4 ")) << points[0];
    EXPECT_TRUE(points[0].ends_with("POINT Z (9 48 300)")) << points[0];
    EXPECT_TRUE(points[2].ends_with("POINT Z (3 4 0)")) << points[2];
    EXPECT_NE(testing::ReadFile(Out(L"a_d_points.prj")).find("WGS_1984"), std::string::npos);
}

TEST_F(VectorConversionTest, AnArchiveIsReadInPlaceWhateverItsName) {
    folder_.Write(L"in/.keep", "");
    for (const wchar_t* name : {L"in/a.kmz", L"in/b.kml"}) {
        const std::wstring path = folder_.Name(name);
        const std::string archive = ToUtf8(folder_.Name(L"in/archive.zip"));
        for (const char* entry : {"first.kml", "doc.kml"}) {
            const std::string place = entry[0] == 'd' ? "7,8,9" : "1,2,3";
            const std::string kml =
                Kml("<Placemark><Point><coordinates>" + place + "</coordinates></Point></Placemark>");
            VSILFILE* const file = VSIFOpenL(("/vsizip/" + archive + "/" + entry).c_str(), "wb");
            ASSERT_NE(file, nullptr);
            VSIFWriteL(kml.data(), 1, kml.size(), file);
            VSIFCloseL(file);
        }
        ASSERT_EQ(RenameFile(folder_.Name(L"in/archive.zip"), path), 0);
        const auto result = Convert(path);
        ASSERT_TRUE(result);
        ASSERT_EQ(result->shapefiles.size(), 1U);
        EXPECT_TRUE(Rows(result->shapefiles[0].path)[0].ends_with("POINT Z (7 8 9)"));
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path() / "in"), {}), 3);
}

TEST_F(VectorConversionTest, NothingIsReplaced) {
    const std::wstring path = folder_.Write(L"in/a.dxf", Dxf(Point("x", 1, 2, 3) + Point("X", 4, 5, 6)));
    folder_.Write(L"out/A_x_points.dbf", "mine");
    const auto result = Convert(path);
    ASSERT_TRUE(result);
    EXPECT_EQ(Names(L".SHP"), (Texts{"a_X_points (2).shp", "a_x_points (3).shp"}));
    EXPECT_EQ(testing::ReadFile(Out(L"A_x_points.dbf")), "mine");
    ASSERT_EQ(result->warnings.size(), 2U);
    EXPECT_NE(result->warnings.back().find(L"a_x_points (3).shp"), std::wstring::npos);
}

TEST_F(VectorConversionTest, ValuesSurviveAndWhatIsCutIsTold) {
    const std::string text = std::string(253, 'x') + "\u00E4\u00E4";
    std::string data;
    for (const char* value : {"1e300", "123456789012.5", "-0.000001", "12"}) {
        data += "<Placemark><ExtendedData><SchemaData schemaUrl=\"#s\"><SimpleData name=\"number\">" +
                std::string(value) + "</SimpleData><SimpleData name=\"a rather long name\">" + text +
                "</SimpleData></SchemaData></ExtendedData><Point><coordinates>1,2</coordinates></Point></"
                "Placemark>";
    }
    const std::wstring path = folder_.Write(
        L"in/a.kml", Kml("<Schema name=\"s\" id=\"s\"><SimpleField type=\"double\" name=\"number\"/>"
                         "<SimpleField type=\"string\" name=\"a rather long name\"/></Schema>" +
                         data));
    if (GetGDALDriverManager()->GetDriverByName("LIBKML") == nullptr) {
        GTEST_SKIP() << "this build of GDAL does not read such data";
    }
    const auto result = Convert(path);
    ASSERT_TRUE(result);
    const Texts rows = Rows(Out(L"a_d_points.shp"));
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_NE(rows[1].find("number=123456789012.5"), std::string::npos) << rows[1];
    EXPECT_NE(rows[2].find("number=-0.000001000"), std::string::npos) << rows[2];
    EXPECT_NE(rows[0].find("a_rather_l=" + std::string(253, 'x') + " "), std::string::npos) << rows[0];
    ASSERT_EQ(result->notes.size(), 1U);
    EXPECT_NE(result->notes[0].find(L"a_rather_l"), std::wstring::npos);
    std::wstring told;
    for (const std::wstring& warning : result->warnings) {
        told += warning + L"\n";
    }
    EXPECT_NE(told.find(L"254"), std::wstring::npos) << ToUtf8(told);
    EXPECT_NE(told.find(L"too large for the field: 1."), std::wstring::npos) << ToUtf8(told);
}

TEST_F(VectorConversionTest, ManyLayersTakeFewHandlesAndLoseNothing) {
    std::string entities;
    for (int round = 0; round < 3; ++round) {
        for (int layer = 0; layer < 150; ++layer) {
            entities += Point("L" + std::to_string(layer), round, layer, 0) +
                        Label("L" + std::to_string(layer),
                              std::string(100 + 10 * static_cast<std::size_t>(round), 't'));
        }
    }
    const auto result = Convert(folder_.Write(L"in/a.dxf", Dxf(entities)));
    ASSERT_TRUE(result);
    ASSERT_EQ(result->shapefiles.size(), 300U);
    for (const ConvertedShapefile& shapefile : result->shapefiles) {
        EXPECT_EQ(shapefile.count, 3U);
        EXPECT_EQ(Rows(shapefile.path).size(), 3U) << ToUtf8(shapefile.path);
    }
    EXPECT_NE(Rows(Out(L"a_L149_text.shp"))[2].find(std::string(120, 't')), std::string::npos);
}

TEST_F(VectorConversionTest, WhatCannotBeReadSaysWhyAndLeavesNothing) {
    struct Case {
        std::wstring name;
        std::string bytes;
        const wchar_t* cause;
    };
    const Case cases[] = {
        {L"in/a.dwg", "AC1032" + std::string(200, '\0'), L"a.dwg"},
        {L"in/a.dxf", "no drawing", L"a.dxf"},
        {L"in/a.dxf", "", L"a.dxf"},
        {L"in/a.kml", "<kml", L"a.kml"},
        {L"in/a.kmz", "no archive", L"a.kmz"},
        {L"in/a.shp", "", L"SHP"},
    };
    for (const Case& c : cases) {
        const std::wstring text = FailureOf(folder_.Write(c.name, c.bytes));
        EXPECT_NE(text.find(c.cause), std::wstring::npos) << ToUtf8(c.name) << ": " << ToUtf8(text);
        EXPECT_EQ(Names(), Texts{}) << ToUtf8(c.name);
    }
    EXPECT_NE(FailureOf(folder_.Name(L"in/missing.dxf")).find(L"missing.dxf"), std::wstring::npos);
    std::string entities;
    for (std::size_t layer = 0; layer <= kMostShapefiles; ++layer) {
        entities += Point(std::to_string(layer), 1, 2, 3);
    }
    EXPECT_NE(FailureOf(folder_.Write(L"in/many.dxf", Dxf(entities))).find(L"1,000"), std::wstring::npos);
    EXPECT_EQ(Names(), Texts{});
}

TEST_F(VectorConversionTest, AStopLeavesNothing) {
    struct Stop final : Kst::ProgressIf {
        int polls = 0;
        int last = 0;
        void SetRange(std::uint64_t) override {}
        void SetText(const std::wstring&) override {}
        void SetPosition(std::uint64_t) override {}
        bool IsCancelled() override { return ++polls > last; }
    };
    std::string entities;
    for (int i = 0; i < 1000; ++i) {
        entities += Point("0", i, 2, 3);
    }
    const std::wstring path = folder_.Write(L"in/a.dxf", Dxf(entities));
    for (const int polls : {0, 5, 15}) {
        Stop progress;
        progress.last = polls;
        EXPECT_FALSE(ConvertVector(path, options_, progress)) << polls;
        EXPECT_EQ(progress.polls, polls + 1);
        EXPECT_EQ(Names(), Texts{});
    }
    folder_.Write(L"file", "");
    options_.outputFolder = folder_.Name(L"file/out");
    EXPECT_NE(FailureOf(path).find(L"file"), std::wstring::npos);
}

}  // namespace
}  // namespace orvex
