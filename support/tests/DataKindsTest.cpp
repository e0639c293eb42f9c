#include "support/DataKinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Text.h"

namespace orvex {
namespace {

using enum DataKind;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAreArray;

std::vector<std::wstring> Shown(DataKind page) {
    std::vector<std::wstring> filters;
    for (const FileFilter& filter : PickerFilters(page)) {
        filters.push_back(filter.caption + L"|" + filter.patterns);
    }
    return filters;
}

TEST(DataKinds, FiltersOfThePickers) {
    EXPECT_THAT(Shown(Las), ElementsAre(L"LAS Files (*.las)|*.las", L"LAZ Files (*.laz)|*.laz"));
    EXPECT_THAT(
        Shown(Raster),
        ElementsAre(L"All Image Files|*.tif;*.tiff;*.jpg;*.jpeg;*.rgb;*.png;*.sid;*.gif;*.bmp;*.jp2;*.jp2k;"
                    L"*.flt;*.ecw;*.img",
                    L"TIF Files (*.tif)|*.tif", L"JPEG Files (*.jpg)|*.jpg", L"PNG Files (*.png)|*.png",
                    L"GIF Files (*.gif)|*.gif", L"BMP Files (*.bmp)|*.bmp", L"MrSID Files (*.sid)|*.sid",
                    L"JP2000 Files (*.jp2)|*.jp2", L"ECW Files (*.ecw)|*.ecw", L"IMG Files (*.img)|*.img",
                    L"All Files (*.*)|*.*"));
    EXPECT_EQ(Shown(Dem), Shown(Raster));
}

TEST(DataKinds, ExtensionsThatAPageTakes) {
    std::vector<std::wstring> images{L".TIF", L".TIFF", L".JPG",  L".JPEG", L".RGB", L".PNG", L".GIF",
                                     L".BMP", L".JP2",  L".JP2K", L".ECW",  L".IMG", L".FLT"};
    EXPECT_THAT(ScanExtensions(Las), ElementsAre(L".LAS", L".LAZ"));
    EXPECT_THAT(ScanExtensions(Raster), UnorderedElementsAreArray(images));
    EXPECT_THAT(ScanExtensions(Dem), UnorderedElementsAreArray(images));
    EXPECT_THAT(NamedExtensions(Las), ElementsAre(L".LAS", L".LAZ"));
    images.emplace_back(L".SID");
    EXPECT_THAT(NamedExtensions(Raster), UnorderedElementsAreArray(images));
    for (const wchar_t* elevation :
         {L".ASC", L".BIL", L".DEM", L".DT0", L".DT1", L".DT2", L".GRD", L".HGT"}) {
        images.emplace_back(elevation);
    }
    EXPECT_THAT(NamedExtensions(Dem), UnorderedElementsAreArray(images));
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
             Case{L"b.ASC", Dem},
             Case{L"/a/HDR.adf", Dem},
             Case{L"/a/w001001.adf", std::nullopt},
             Case{L"/a.tif/b", std::nullopt},
             Case{L"b.txt", std::nullopt},
             Case{L"hdr.adf/b", std::nullopt},
             Case{L"", std::nullopt},
         }) {
        EXPECT_EQ(DataKindOf(row.path), row.kind) << ToUtf8(row.path);
    }
}

}  // namespace
}  // namespace orvex
