#include "raster/RasterDrivers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "crs/GdalSetup.h"
#include "raster/RasterReader.h"
#include "support/LDataError.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;

std::wstring WhyNotRead(const std::wstring& path) {
    try {
        ReadRasterProperties(path);
    } catch (const LDataError& error) {
        return error.Text();
    }
    return L"it was read";
}

TEST(RasterDrivers, AMissingOneIsNamedByTheFilesExtension) {
    ASSERT_TRUE(EnsureGdal());
    const testing::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.PnG", "no image");
    EXPECT_EQ(WhyNotRead(path), L"") << "with the driver it is none of its files";

    GDALDriverH driver = GDALGetDriverByName("PNG");
    ASSERT_NE(driver, nullptr);
    GDALDeregisterDriver(driver);
    EXPECT_THAT(WhyNotRead(path), HasSubstr(L" PNG"));
    for (const wchar_t* other : {L"", L".", L"a", L"a.gif", L"a.tif", L"a.png/b", L"a.unknown"}) {
        EXPECT_EQ(MissingDriverReason(other), L"") << other;
    }
    GDALRegisterDriver(driver);
    EXPECT_EQ(MissingDriverReason(path), L"");
}

TEST(RasterDrivers, EverySystemReadsWhatNeedsNoLicence) {
    ASSERT_TRUE(EnsureGdal());
    for (const char* name : {"AIG", "BIGGIF", "DTED", "GS7BG", "GSAG", "GSBG", "JP2OpenJPEG", "NITF",
                             "NWT_GRD", "SDTS", "SGI", "USGSDEM", "WEBP"}) {
        EXPECT_NE(GDALGetDriverByName(name), nullptr) << name;
    }
    const char* const codecs =
        GDALGetMetadataItem(GDALGetDriverByName("GTiff"), GDAL_DMD_CREATIONOPTIONLIST, nullptr);
    for (const char* codec : {"JPEG", "WEBP", "ZSTD"}) {
        EXPECT_THAT(codecs, HasSubstr(codec));
    }
}

}  // namespace
}  // namespace orvex
