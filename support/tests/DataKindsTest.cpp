#include "support/DataKinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Text.h"

namespace orvex {
namespace {

using enum DataKind;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

TEST(DataKinds, ExtensionsThatAPageTakes) {
    EXPECT_THAT(ScanExtensions(Las), ElementsAre(L".LAS", L".LAZ"));
    EXPECT_THAT(ScanExtensions(Raster), Not(Contains(L".SID"))) << "only by name";
    EXPECT_THAT(NamedExtensions(Raster), Contains(L".SID"));
    EXPECT_THAT(ScanExtensions(Dem), Not(Contains(L".ASC"))) << "only by name";
    EXPECT_THAT(NamedExtensions(Dem), Contains(L".ASC"));
    EXPECT_THAT(NamedExtensions(Dem), Contains(L"HDR.ADF"));
    EXPECT_THAT(ScanExtensions(Feature),
                UnorderedElementsAre(L".SHP", L".DGN", L".DWG", L".DXF", L".KML", L".KMZ"));
    EXPECT_THAT(NamedExtensions(Feature), ElementsAreArray(ScanExtensions(Feature)));
}

// The picker of the photo page offers everything, its folder search leaves out .sid, and dropping .rgb.
TEST(DataKinds, ThreeListsOfThePhotoPage) {
    EXPECT_THAT(ScanExtensions(Photo),
                UnorderedElementsAre(L".TIF", L".TIFF", L".JPG", L".JPEG", L".RGB", L".PNG", L".GIF", L".BMP",
                                     L".JP2", L".JP2K", L".ECW", L".IMG", L".FLT"));
    EXPECT_THAT(NamedExtensions(Photo),
                UnorderedElementsAre(L".JPG", L".JPEG", L".TIF", L".TIFF", L".PNG", L".GIF", L".BMP", L".SID",
                                     L".JP2", L".JP2K", L".ECW", L".IMG", L".FLT"));
    EXPECT_EQ(PickerFilters(Photo).front().patterns,
              L"*.tif;*.tiff;*.jpg;*.jpeg;*.rgb;*.png;*.sid;*.gif;*.bmp;*.jp2;*.jp2k;*.flt;*.ecw;*.img");
}

TEST(DataKinds, FiltersInTheOrderShown) {
    const auto names = [](DataKind page) {
        std::vector<std::wstring> shown;
        for (const FileFilter& filter : PickerFilters(page)) {
            shown.push_back(filter.caption);
        }
        return shown;
    };
    EXPECT_THAT(names(Feature), ElementsAre(L"All Feature Files", L"Shapefile Files (*.shp)",
                                            L"DGN Files (*.dgn)", L"DWG Files (*.dwg)", L"DXF Files (*.dxf)",
                                            L"KML Files (*.kml)", L"KMZ Files (*.kmz)", L"All Files (*.*)"));
    EXPECT_EQ(PickerFilters(Feature).front().patterns, L"*.shp;*.dwg;*.dgn;*.dxf;*.kml;*.kmz");
    EXPECT_EQ(names(Photo), names(Raster));
}

TEST(DataKinds, KindsThatAFileCanBeReadAs) {
    EXPECT_TRUE(CanBeReadAs(Raster, Photo));
    EXPECT_TRUE(CanBeReadAs(Raster, Dem));
    EXPECT_TRUE(CanBeReadAs(Dem, Raster));
    EXPECT_TRUE(CanBeReadAs(Feature, Feature));
    EXPECT_FALSE(CanBeReadAs(Dem, Photo)) << "an elevation grid is no image";
    EXPECT_FALSE(CanBeReadAs(Raster, Feature));
    EXPECT_FALSE(CanBeReadAs(Las, Raster));
}

TEST(DataKinds, KindOfAName) {
    struct Case {
        const wchar_t* path;
        std::optional<DataKind> kind;
    };
    for (const Case& row : {
             Case{L"/a/b.las", Las},
             Case{L"b.LaZ", Las},
             Case{L"b.JP2k", Raster},
             Case{L"b.sid", std::nullopt},
             Case{L"b.tif", Raster},
             Case{L"b.JPG", Raster},
             Case{L"b.Shp", Feature},
             Case{L"b.kmz", Feature},
             Case{L"b.ASC", Dem},
             Case{L"/a/HDR.adf", Dem},
             Case{L"/a/w001001.adf", std::nullopt},
             Case{L"b.txt", std::nullopt},
             Case{L"", std::nullopt},
         }) {
        EXPECT_EQ(DataKindOf(row.path), row.kind) << ToUtf8(row.path);
    }
}

}  // namespace
}  // namespace orvex
