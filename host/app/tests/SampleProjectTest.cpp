#include "host/app/SampleProject.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <array>
#include <set>

#include "host/app/SampleLasFile.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

using testing::At;

std::string BytesOf(const fs::path& path) {
    return testing::ReadFile(FromPath(path));
}

TEST(SampleLas, HeaderAgreesWithThePoints) {
    for (const int minor : {2, 4}) {
        SampleTile tile;
        tile.west = 1000;
        tile.south = 2000;
        tile.side = 10;
        tile.minorVersion = minor;
        tile.pointFormat = minor == 4 ? 7 : 3;
        tile.crs = minor == 4 ? SampleCrs::Wkt : SampleCrs::GeoKeys;
        tile.wkt = "LOCAL_CS[\"x\"]";
        const std::string bytes = MakeSampleLas(tile);
        const auto start = At<std::uint32_t>(bytes, 96);
        const auto length = At<std::uint16_t>(bytes, 105);
        EXPECT_EQ(bytes.size(), start + 100U * length);
        double lowest = 1e9;
        for (std::size_t i = 0; i < 100; ++i) {
            const auto z = At<std::int32_t>(bytes, start + i * length + 8);
            lowest = std::min(lowest, z * At<double>(bytes, 147));
        }
        EXPECT_NEAR(lowest, At<double>(bytes, 219), 1e-9);
        EXPECT_NEAR(At<double>(bytes, 187), 1000, 1);
    }
}

/// Checks the rasters of a sample project against their names.
void ExpectRasters(const fs::path& project) {
    const fs::path rasters = SampleData(project) / "rasters";
    struct Case {
        const char* name;
        GDALDataType type;
        int bands;
        int overviews;
        bool hasCrs;
        bool hasPlace;
    };
    for (const Case& c :
         {Case{"orthophoto.tif", GDT_Byte, 3, 2, true, true},
          Case{"infrared 16 bit.tif", GDT_UInt16, 1, 0, true, true},
          Case{"map.png", GDT_Byte, 1, 0, true, true}, Case{"rotated scan.tif", GDT_Byte, 1, 0, true, true},
          Case{"transparent big.tif", GDT_Byte, 4, 0, true, true},
          Case{"no crs.tif", GDT_Byte, 1, 0, false, true}, Case{"no place.png", GDT_Byte, 1, 0, false, false},
          Case{"../elevation/terrain.bil", GDT_Float32, 1, 0, true, true},
          Case{"../elevation/text grid.asc", GDT_Float32, 1, 0, true, true}}) {
        SCOPED_TRACE(c.name);
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(FromPath(rasters / c.name)).c_str()));
        ASSERT_NE(dataset, nullptr);
        std::array<double, 6> transform{};
        EXPECT_EQ(dataset->GetRasterBand(1)->GetRasterDataType(), c.type);
        EXPECT_EQ(dataset->GetRasterCount(), c.bands);
        EXPECT_EQ(dataset->GetRasterBand(1)->GetOverviewCount(), c.overviews);
        EXPECT_EQ(dataset->GetSpatialRef() != nullptr, c.hasCrs);
        EXPECT_EQ(dataset->GetGeoTransform(transform.data()) == CE_None, c.hasPlace);
        EXPECT_EQ(transform[2] != 0, std::string_view(c.name) == "rotated scan.tif");
    }
    EXPECT_EQ(BytesOf(rasters / "transparent big.tif")[2], 43) << "no BigTIFF";
}

TEST(SampleProject, IsMadeOnceAndWhole) {
    const testing::TemporaryFolder folder;
    const fs::path project = folder.Path() / ToPath(L"sample Größe 日本");
    ASSERT_EQ(EnsureSampleProject(project), project);
    std::set<std::string> extensions;
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(SampleData(project))) {
        if (entry.is_regular_file()) {
            extensions.insert(entry.path().extension().string());
            ++files;
        }
    }
    EXPECT_EQ(extensions, (std::set<std::string>{".las", ".laz", ".tif", ".png", ".wld", ".xml", ".asc",
                                                 ".bil", ".hdr", ".prj"}));
    EXPECT_EQ(files, 27U);
    EXPECT_FALSE(fs::exists(folder.Path() / "sample.new"));
    EXPECT_NE(BytesOf(SampleData(project) / "survey 2024" / "tile_4.las").find("\"EPSG\",\"25832\""),
              std::string::npos);
    const std::string compressed = BytesOf(SampleData(project) / "survey 2024" / "tile_7.laz");
    ASSERT_GT(compressed.size(), 375U);
    EXPECT_EQ(compressed[104] & 0x80, 0x80);
    EXPECT_EQ(At<std::uint64_t>(compressed, 247), 40000U);

    ExpectRasters(project);

    const fs::path touched = SampleData(project) / "wgs84.las";
    fs::remove(touched);
    EnsureSampleProject(project);
    EXPECT_FALSE(fs::exists(touched)) << "made twice";
}

TEST(SampleProject, OfAnEarlierVersionGetsWhatItLacks) {
    const testing::TemporaryFolder folder;
    folder.Write(L"p/data/kept.las", "what was there");
    folder.Write(L"p/data/rasters.new/half.tif", "of an interrupted run");
    const fs::path project = folder.Path() / "p";
    ASSERT_EQ(EnsureSampleProject(project), project);
    EXPECT_EQ(BytesOf(SampleData(project) / "kept.las"), "what was there");
    EXPECT_FALSE(fs::exists(SampleData(project) / "wgs84.las")) << "mixed with what was there";
    EXPECT_TRUE(fs::exists(SampleData(project) / "elevation" / "terrain.bil"));
    EXPECT_FALSE(fs::exists(SampleData(project) / "rasters" / "half.tif"));
    EXPECT_FALSE(fs::exists(SampleData(project) / "rasters.new"));
}

}  // namespace
}  // namespace orvex
