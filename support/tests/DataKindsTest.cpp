#include "support/DataKinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Text.h"

namespace orvex {
namespace {

using enum DataKind;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

TEST(DataKinds, ExtensionsThatAPageTakes) {
    EXPECT_THAT(ScanExtensions(Las), ElementsAre(L".LAS", L".LAZ"));
    EXPECT_THAT(ScanExtensions(Raster), Not(Contains(L".SID"))) << "only by name";
    EXPECT_THAT(NamedExtensions(Raster), Contains(L".SID"));
    EXPECT_THAT(ScanExtensions(Dem), Not(Contains(L".ASC"))) << "only by name";
    EXPECT_THAT(NamedExtensions(Dem), Contains(L".ASC"));
    EXPECT_THAT(NamedExtensions(Dem), Contains(L"HDR.ADF"));
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
             Case{L"b.txt", std::nullopt},
             Case{L"", std::nullopt},
         }) {
        EXPECT_EQ(DataKindOf(row.path), row.kind) << ToUtf8(row.path);
    }
}

}  // namespace
}  // namespace orvex
