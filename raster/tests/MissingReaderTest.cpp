#include "raster/MissingReader.h"

#include <gdal.h>
#include <gtest/gtest.h>

#include <fstream>

#include "raster/RasterReader.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

/// A build without a driver that this one has, until destroyed.
class WithoutDriver {
  public:
    explicit WithoutDriver(const char* name) {
        GDALAllRegister();
        driver_ = GDALGetDriverByName(name);
        EXPECT_NE(driver_, nullptr) << name;
        GDALDeregisterDriver(driver_);
    }
    ~WithoutDriver() { GDALRegisterDriver(driver_); }
    WithoutDriver(const WithoutDriver&) = delete;
    WithoutDriver& operator=(const WithoutDriver&) = delete;

  private:
    GDALDriverH driver_;
};

TEST(MissingReader, IsNamedWhereTheNameOfTheFileTellsTheFormat) {
    GDALAllRegister();
    EXPECT_EQ(MissingReaderReason(L"/a/b.PnG"), L"");
    const WithoutDriver without("PNG");
    EXPECT_NE(MissingReaderReason(L"/a/b.PnG").find(L" PNG"), std::wstring::npos);
    for (const wchar_t* path : {L"", L".", L"a", L"a.gif", L"a.tif", L"a.png/b", L"a.unknown"}) {
        EXPECT_EQ(MissingReaderReason(path), L"") << path;
    }
}

TEST(MissingReader, IsTheReasonOfAFileThatNothingRecognises) {
    const testing::TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "a.png";
    std::ofstream(file) << "no image";
    const auto reason = [&]() -> std::wstring {
        try {
            ReadRasterProperties(FromPath(file));
        } catch (const LDataError& error) {
            return error.Text();
        }
        return L"it was read";
    };
    {
        const WithoutDriver without("PNG");
        EXPECT_EQ(reason(), MissingReaderReason(L"a.png"));
        EXPECT_NE(reason(), L"");
    }
    EXPECT_EQ(reason(), L"") << "with the reader it is none of its files";
}

}  // namespace
}  // namespace orvex
