#include "host/app/RasterOverview.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>

#include "host/app/OverviewLoader.h"
#include "host/app/RasterPyramids.h"
#include "host/app/tests/TestRasters.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"

namespace orvex {
namespace {

using testing::Bytes;
using testing::Ramp;
using testing::TemporaryFolder;
using testing::TestRaster;
using Pixel = std::array<int, 4>;

constexpr Pixel kNothing = {0, 0, 0, 0};

bool Never() {
    return false;
}

Pixel PixelOf(const RasterOverview& picture, int x, int y) {
    Pixel pixel{};
    const auto at = 4 * static_cast<std::size_t>(y * picture.width + x);
    std::copy_n(picture.rgba.begin() + static_cast<std::ptrdiff_t>(at), 4, pixel.begin());
    return pixel;
}

RasterOverview ReadWhole(const std::wstring& path) {
    RasterOverview picture = ReadRasterOverview(path, Never);
    EXPECT_EQ(picture.problem, L"");
    EXPECT_EQ(picture.rgba.size(), 4 * static_cast<std::size_t>(picture.width * picture.height));
    return picture;
}

Pixel Grey(int shade) {
    return {shade, shade, shade, 255};
}

class RasterOverviewTest : public ::testing::Test {
  protected:
    TemporaryFolder folder_;
};

TEST_F(RasterOverviewTest, ValuesBecomeShadesByWhatTheirTypeMeans) {
    struct Case {
        const char* what;
        GDALDataType type;
        std::vector<double> values;
        std::vector<std::string> options;
        std::vector<int> shades;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {"bytes as they are", GDT_Byte, {0, 100, 200, 255}, {}, {0, 100, 200, 255}},
        {"one bit", GDT_Byte, {0, 1, 1, 0}, {"NBITS=1"}, {0, 255, 255, 0}},
        {"four bits", GDT_Byte, {0, 5, 15, 10}, {"NBITS=4"}, {0, 85, 255, 170}},
        {"16 bits are stretched", GDT_UInt16, {1000, 1100, 1500, 2000}, {}, {0, 26, 128, 255}},
        {"signed", GDT_Int16, {-100, 0, 50, 100}, {}, {0, 128, 191, 255}},
        {"floats", GDT_Float32, {0.001, 0.002, 0.003, 0.0035}, {}, {0, 102, 204, 255}},
        {"one value", GDT_Float32, {7, 7, 7, 7}, {}, {128, 128, 128, 128}},
        {"what is no number is nothing", GDT_Float32, {std::nan(""), 0, 10, infinity}, {}, {-1, 0, 255, -1}},
        {"real parts", GDT_CFloat32, {0, 1, 2, 4}, {}, {0, 64, 128, 255}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const RasterOverview picture =
            ReadWhole(TestRaster(2, 2, c.type, c.values).Save(folder_, L"a.tif", c.options));
        ASSERT_EQ(picture.width, 2);
        for (int i = 0; i < 4; ++i) {
            const int shade = c.shades[static_cast<std::size_t>(i)];
            EXPECT_EQ(PixelOf(picture, i % 2, i / 2), shade < 0 ? kNothing : Grey(shade)) << i;
        }
    }
}

TEST_F(RasterOverviewTest, NodataIsTransparentAndIsNoBrightness) {
    const double lowest = -3.4028234663852886e38;
    TestRaster raster(2, 2, GDT_Float32, {lowest, 100, 200, lowest});
    raster.Band(1).SetNoDataValue(-3.40282347e38);
    const RasterOverview picture = ReadWhole(raster.Save(folder_, L"a.tif"));
    EXPECT_EQ(PixelOf(picture, 0, 0), kNothing);
    EXPECT_EQ(PixelOf(picture, 1, 0), Grey(0));
    EXPECT_EQ(PixelOf(picture, 0, 1), Grey(255));
}

TEST_F(RasterOverviewTest, PalettesColoursAndAlphaAreResolved) {
    TestRaster palette(2, 2, GDT_Byte, {0, 1, 2, 9});
    GDALColorTable colours;
    const GDALColorEntry entries[] = {{255, 0, 0, 255}, {0, 128, 0, 255}, {0, 0, 64, 100}};
    for (int i = 0; i < 3; ++i) {
        colours.SetColorEntry(i, &entries[i]);
    }
    palette.Band(1).SetColorTable(&colours);
    const RasterOverview map = ReadWhole(palette.Save(folder_, L"map.png", {}, "PNG"));
    EXPECT_EQ(PixelOf(map, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelOf(map, 1, 0), (Pixel{0, 128, 0, 255}));
    EXPECT_EQ(PixelOf(map, 0, 1), (Pixel{0, 0, 64, 100}));

    TestRaster rgba(2, 2, GDT_Byte, {10, 20, 30, 40}, 4);
    rgba.SetValues(2, {50, 60, 70, 80});
    rgba.SetValues(4, {255, 128, 0, 255});
    const RasterOverview picture =
        ReadWhole(rgba.Save(folder_, L"rgba.tif", {"PHOTOMETRIC=RGB", "ALPHA=YES"}));
    EXPECT_EQ(PixelOf(picture, 0, 0), (Pixel{10, 50, 10, 255}));
    EXPECT_EQ(PixelOf(picture, 1, 0), (Pixel{20, 60, 20, 128}));
    EXPECT_EQ(PixelOf(picture, 0, 1)[3], 0);
}

TEST_F(RasterOverviewTest, LargeRastersAreReducedInTheirOwnProportion) {
    OverviewLimits limits;
    limits.longSide = 50;
    const std::wstring path =
        TestRaster(400, 100, GDT_Byte, std::vector<double>(40000, 80)).Save(folder_, L"a.tif");
    const RasterOverview picture = ReadRasterOverview(path, Never, limits);
    EXPECT_EQ(picture.width, 50);
    EXPECT_EQ(picture.height, 13);
    EXPECT_EQ(PixelOf(picture, 49, 12), Grey(80));
    EXPECT_EQ(folder_.Entries(), 1U) << "something was written";
}

TEST_F(RasterOverviewTest, TooMuchWorkIsLeftUnlessThereAreOverviews) {
    OverviewLimits limits;
    limits.longSide = 20;
    limits.mostBytes = 70000;
    const std::wstring path =
        TestRaster(400, 400, GDT_Byte, std::vector<double>(160000, 9)).Save(folder_, L"a.tif", {"TILED=YES"});
    EXPECT_EQ(ReadRasterOverview(path, Never, limits).problem, Text(41420_lsid));
    limits.mostBytes = 1 << 20;
    limits.mostBlockBytes = 1000;
    EXPECT_EQ(ReadRasterOverview(path, Never, limits).problem, Text(41420_lsid));
    {
        const GDALDatasetUniquePtr dataset(
            GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        int levels[] = {4, 8};
        ASSERT_EQ(dataset->BuildOverviews("NEAREST", 2, levels, 0, nullptr, nullptr, nullptr), CE_None);
    }
    limits = {20, 70000, 70000, 20000};
    const RasterOverview picture = ReadRasterOverview(path, Never, limits);
    EXPECT_EQ(picture.problem, L"");
    EXPECT_EQ(picture.width, 20);
}

/// A TIFF of these tags, each (id, type, value); all fit into their entries.
std::string Tiff(const std::vector<std::array<std::uint32_t, 3>>& tags) {
    std::string bytes =
        "II" + Bytes(std::uint16_t{42}, std::uint32_t{8}, static_cast<std::uint16_t>(tags.size()));
    for (const auto& [id, type, value] : tags) {
        bytes +=
            Bytes(static_cast<std::uint16_t>(id), static_cast<std::uint16_t>(type), std::uint32_t{1}, value);
    }
    return bytes + Bytes(std::uint32_t{0});
}

TEST_F(RasterOverviewTest, HostileFilesGiveAReasonInTime) {
    const auto tiff = [](std::uint32_t width, std::uint32_t height, std::uint32_t rows,
                         std::uint32_t compression) {
        return Tiff({{256, 4, width},
                     {257, 4, height},
                     {258, 3, 8},
                     {259, 3, compression},
                     {262, 3, 1},
                     {273, 4, 200},
                     {277, 3, 1},
                     {278, 4, rows},
                     {279, 4, 100}});
    };
    const std::wstring whole =
        TestRaster(300, 300, GDT_UInt16, Ramp(90000, 0.5)).Save(folder_, L"whole.tif", {"COMPRESS=DEFLATE"});
    const std::string bytes = testing::ReadFile(whole);
    struct Case {
        const char* what;
        std::string bytes;
    };
    const Case cases[] = {
        {"empty", ""},
        {"no raster", "This is a text file that somebody renamed.\n"},
        {"65535 x 65535 as one block", tiff(65535, 65535, 65535, 5)},
        {"2^31 wide", tiff(0x7FFFFFFF, 1, 1, 1)},
        {"unknown codec", tiff(100, 100, 100, 4711)},
        {"rows that are not there", tiff(1000, 1000, 1, 1)},
        {"truncated", bytes.substr(0, bytes.size() / 2)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto start = std::chrono::steady_clock::now();
        const RasterOverview picture = ReadRasterOverview(folder_.Write(L"bad.tif", c.bytes), Never);
        EXPECT_FALSE(picture.problem.empty());
        EXPECT_EQ(picture.width, 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
    EXPECT_FALSE(ReadRasterOverview(folder_.Name(L"gone.tif"), Never).problem.empty());
}

TEST_F(RasterOverviewTest, CancellingLeavesNeitherPictureNorProblem) {
    const std::wstring path =
        TestRaster(100, 100, GDT_Byte, std::vector<double>(10000, 9)).Save(folder_, L"a.tif");
    int asked = 0;
    const RasterOverview picture = ReadRasterOverview(path, [&asked] { return ++asked > 3; });
    EXPECT_EQ(picture.width, 0);
    EXPECT_EQ(picture.problem, L"");
    EXPECT_EQ(asked, 4);
}

/// Waits for overviews as they come.
class Arrivals {
  public:
    void Signal() {
        const std::lock_guard guard(lock_);
        ++count_;
        changed_.notify_all();
    }
    void WaitFor(const std::function<bool()>& done) {
        std::unique_lock guard(lock_);
        EXPECT_TRUE(changed_.wait_for(guard, std::chrono::seconds(20), [&] {
            guard.unlock();
            const bool isDone = done();
            guard.lock();
            return isDone;
        }));
    }

  private:
    std::mutex lock_;
    std::condition_variable changed_;
    int count_ = 0;
};

TEST(OverviewLoader, ReadsWhatIsWantedAndForgetsTheRest) {
    Arrivals arrivals;
    std::promise<void> started;
    OverviewLoader loader([&] { arrivals.Signal(); },
                          [&](const std::wstring& path, int, const std::function<bool()>& isCancelled) {
                              if (path == L"endless") {
                                  started.set_value();
                                  while (!isCancelled()) {
                                      std::this_thread::yield();
                                  }
                              }
                              if (path == L"throws") {
                                  throw std::runtime_error("no such thing");
                              }
                              return RasterOverview{1, 1, {1, 2, 3, 4}, {}};
                          });
    loader.Want({L"endless", L"a", L"throws"});
    std::map<std::wstring, RasterOverview> loaded;
    const auto take = [&] {
        for (OverviewLoader::Loaded& one : loader.Take()) {
            loaded.emplace(one.path, std::move(one.overview));
        }
        return loaded.size();
    };
    arrivals.WaitFor([&] { return take() == 2; });
    EXPECT_EQ(loaded[L"a"].width, 1);
    EXPECT_EQ(loaded[L"throws"].problem, L"no such thing");
    started.get_future().wait();
    EXPECT_FALSE(loader.IsIdle());
    loader.Want({L"a"});
    arrivals.WaitFor([&] { return loader.IsIdle(); });
    EXPECT_EQ(take(), 2U) << "what is no longer wanted came back, or what was there already was read again";
}

TEST(OverviewLoader, AReaderThatDoesNotAnswerKeepsNobody) {
    auto release = std::make_shared<std::promise<void>>();
    auto released = std::make_shared<std::shared_future<void>>(release->get_future().share());
    auto finished = std::make_shared<std::promise<void>>();
    const auto start = std::chrono::steady_clock::now();
    {
        std::promise<void> started;
        OverviewLoader loader(
            [] { ADD_FAILURE() << "told after its end"; },
            [&started, released, finished](const std::wstring&, int, const std::function<bool()>&) {
                started.set_value();
                released->wait();
                finished->set_value();
                return RasterOverview();
            });
        loader.Want({L"a file on a drive that has gone"});
        started.get_future().wait();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    release->set_value();
    finished->get_future().wait();
}

TEST(OverviewLoader, ManyOverviewsAreSmaller) {
    EXPECT_EQ(OverviewLoader::LongSideFor(1), 512);
    EXPECT_EQ(OverviewLoader::LongSideFor(0), 512);
    const int side = OverviewLoader::LongSideFor(10000);
    EXPECT_LE(10000.0 * side * side * 4, 256.0 * 1024 * 1024);
    EXPECT_GE(OverviewLoader::LongSideFor(100000000), 64);
}

}  // namespace
}  // namespace orvex
