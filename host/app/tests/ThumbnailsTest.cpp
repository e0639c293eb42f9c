#include "host/app/Thumbnails.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <future>
#include <numeric>

#include "host/app/HostText.h"
#include "host/app/tests/TestRasters.h"
#include "support/testing/Bytes.h"

namespace orvex {
namespace {

using testing::Bytes;
using testing::TemporaryFolder;
using testing::TestRaster;
using Pixel = std::array<int, 4>;

bool Never() {
    return false;
}

Pixel PixelOf(const Thumbnail& picture, int x, int y) {
    const QColor pixel = picture.image.pixelColor(x, y);
    return {pixel.red(), pixel.green(), pixel.blue(), pixel.alpha()};
}

Thumbnail ReadWhole(const std::wstring& path) {
    Thumbnail picture = ReadThumbnail(path, Never);
    EXPECT_EQ(picture.problem, "");
    return picture;
}

class ThumbnailTest : public ::testing::Test {
  protected:
    TemporaryFolder folder_;
};

TEST_F(ThumbnailTest, ValuesBecomeShadesByWhatTheirTypeMeans) {
    struct Case {
        const char* what;
        GDALDataType type;
        std::vector<double> values;
        std::vector<std::string> options;
        std::vector<int> shades;  ///< -1 for transparent
        std::optional<double> noData = {};
    };
    const double lowest = -3.4028234663852886e38;
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
        {"no data", GDT_Float32, {lowest, 100, 200, lowest}, {}, {-1, 0, 255, -1}, -3.40282347e38},
        {"real parts", GDT_CFloat32, {0, 1, 2, 4}, {}, {0, 64, 128, 255}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const TestRaster raster(2, 2, c.type, c.values);
        if (c.noData) {
            raster.Band(1).SetNoDataValue(*c.noData);
        }
        const Thumbnail picture = ReadWhole(raster.Save(folder_, L"a.tif", c.options));
        ASSERT_EQ(picture.image.width(), 2);
        for (int i = 0; i < 4; ++i) {
            const int shade = c.shades[static_cast<std::size_t>(i)];
            EXPECT_EQ(PixelOf(picture, i % 2, i / 2), (shade < 0 ? Pixel() : Pixel{shade, shade, shade, 255}))
                << i;
        }
    }
    EXPECT_EQ(folder_.Entries(), 1U) << "something was written beside the raster";
}

TEST_F(ThumbnailTest, PalettesColoursAndAlphaAreResolved) {
    TestRaster palette(2, 2, GDT_Byte, {0, 1, 2, 9});
    GDALColorTable colours;
    const GDALColorEntry entries[] = {{255, 0, 0, 255}, {0, 128, 0, 255}, {0, 0, 64, 100}};
    for (int i = 0; i < 3; ++i) {
        colours.SetColorEntry(i, &entries[i]);
    }
    palette.Band(1).SetColorTable(&colours);
    const Thumbnail map = ReadWhole(palette.Save(folder_, L"map.png", {}, "PNG"));
    EXPECT_EQ(PixelOf(map, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelOf(map, 1, 0), (Pixel{0, 128, 0, 255}));
    EXPECT_EQ(PixelOf(map, 0, 1), (Pixel{0, 0, 64, 100}));

    TestRaster rgba(2, 2, GDT_Byte, {10, 20, 30, 40}, 4);
    rgba.SetValues(2, {50, 60, 70, 80});
    rgba.SetValues(4, {255, 128, 0, 255});
    const Thumbnail picture = ReadWhole(rgba.Save(folder_, L"rgba.tif", {"PHOTOMETRIC=RGB", "ALPHA=YES"}));
    EXPECT_EQ(PixelOf(picture, 0, 0), (Pixel{10, 50, 10, 255}));
    EXPECT_EQ(PixelOf(picture, 1, 0), (Pixel{20, 60, 20, 128}));
    EXPECT_EQ(PixelOf(picture, 0, 1)[3], 0);
}

TEST_F(ThumbnailTest, TooMuchWorkIsLeftUnlessThereAreOverviews) {
    ThumbnailLimits limits;
    limits.longSide = 20;
    limits.decodedBytes = 70000;
    const std::wstring path =
        TestRaster(400, 400, GDT_Byte, std::vector<double>(160000, 9)).Save(folder_, L"a.tif", {"TILED=YES"});
    EXPECT_EQ(ReadThumbnail(path, Never, limits).problem, HostText(text::kOutlineNoOverviews));
    limits.decodedBytes = 1 << 20;
    limits.blockBytes = 1000;
    EXPECT_EQ(ReadThumbnail(path, Never, limits).problem, HostText(text::kOutlineNoOverviews));
    {
        const GDALDatasetUniquePtr dataset(
            GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        int levels[] = {4, 8};
        ASSERT_EQ(dataset->BuildOverviews("NEAREST", 2, levels, 0, nullptr, nullptr, nullptr), CE_None);
    }
    limits.decodedBytes = limits.blockBytes = 70000;
    const Thumbnail picture = ReadThumbnail(path, Never, limits);
    EXPECT_EQ(picture.problem, "");
    EXPECT_EQ(picture.image.width(), 20);
}

/// A TIFF of bytes in one band whose strips are at offset 200.
std::string Tiff(std::uint32_t width, std::uint32_t height, std::uint32_t rows, std::uint32_t compression) {
    const std::array<std::uint32_t, 3> tags[] = {{256, 4, width},       {257, 4, height}, {258, 3, 8},
                                                 {259, 3, compression}, {262, 3, 1},      {273, 4, 200},
                                                 {277, 3, 1},           {278, 4, rows},   {279, 4, 100}};
    std::string bytes = "II" + Bytes(std::uint16_t{42}, std::uint32_t{8}, std::uint16_t{9});
    for (const auto& [id, type, value] : tags) {
        bytes +=
            Bytes(static_cast<std::uint16_t>(id), static_cast<std::uint16_t>(type), std::uint32_t{1}, value);
    }
    return bytes + Bytes(std::uint32_t{0});
}

TEST_F(ThumbnailTest, HostileFilesGiveAReason) {
    std::vector<double> ramp(90000);
    std::iota(ramp.begin(), ramp.end(), 0.0);
    const std::wstring whole =
        TestRaster(300, 300, GDT_UInt16, ramp).Save(folder_, L"whole.tif", {"COMPRESS=DEFLATE"});
    const std::string bytes = testing::ReadFile(whole);
    struct Case {
        const char* what;
        std::string bytes;
    };
    const Case cases[] = {
        {"empty", ""},
        {"no raster", "This is a text file that somebody renamed.\n"},
        {"65535 x 65535 as one block", Tiff(65535, 65535, 65535, 5)},
        {"2^31 wide", Tiff(0x7FFFFFFF, 1, 1, 1)},
        {"unknown codec", Tiff(100, 100, 100, 4711)},
        {"rows that are not there", Tiff(1000, 1000, 1, 1)},
        {"truncated", bytes.substr(0, bytes.size() / 2)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Thumbnail picture = ReadThumbnail(folder_.Write(L"bad.tif", c.bytes), Never);
        EXPECT_FALSE(picture.problem.isEmpty());
        EXPECT_EQ(picture.image.width(), 0);
    }
    EXPECT_FALSE(ReadThumbnail(folder_.Name(L"gone.tif"), Never).problem.isEmpty());
}

TEST_F(ThumbnailTest, CancellingLeavesNeitherPictureNorProblem) {
    const std::wstring path =
        TestRaster(100, 100, GDT_Byte, std::vector<double>(10000, 9)).Save(folder_, L"a.tif");
    int asked = 0;
    const Thumbnail picture = ReadThumbnail(path, [&asked] { return ++asked > 3; });
    EXPECT_EQ(picture.image.width(), 0);
    EXPECT_EQ(picture.problem, "");
    EXPECT_EQ(asked, 4);
}

TEST(Thumbnails, ReadsWhatIsWantedAndForgetsTheRest) {
    std::promise<void> started;
    Thumbnails thumbnails(
        nullptr, [&](const std::wstring& path, const std::function<bool()>& isCancelled, const auto&) {
            if (path == L"endless") {
                started.set_value();
                while (!isCancelled()) {
                    std::this_thread::yield();
                }
            }
            if (path == L"throws") {
                throw std::runtime_error("no such thing");
            }
            return Thumbnail{QImage(1, 1, QImage::Format_ARGB32_Premultiplied), {}};
        });
    QSignalSpy changed(&thumbnails, &Thumbnails::Changed);
    thumbnails.Request({L"endless", L"a", L"throws"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return changed.count() == 2; }));
    EXPECT_EQ(thumbnails.Find(L"a")->image.width(), 1);
    EXPECT_EQ(thumbnails.Find(L"throws")->problem, "no such thing");
    started.get_future().wait();
    EXPECT_TRUE(thumbnails.IsLoading());
    thumbnails.Request({L"a"});
    EXPECT_FALSE(thumbnails.IsLoading());
    EXPECT_EQ(thumbnails.Find(L"throws"), nullptr);
    thumbnails.Request({L"a", L"b"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !thumbnails.IsLoading(); }));
    EXPECT_EQ(thumbnails.Find(L"endless"), nullptr) << "what is no longer wanted came back";
    EXPECT_EQ(changed.count(), 3) << "what was there already was read again";
}

TEST(Thumbnails, AReaderThatDoesNotReturnKeepsNobody) {
    auto release = std::make_shared<std::promise<void>>();
    auto released = std::make_shared<std::shared_future<void>>(release->get_future().share());
    auto finished = std::make_shared<std::promise<void>>();
    {
        std::promise<void> started;
        Thumbnails thumbnails(nullptr, [&started, released, finished](const auto&, const auto&, const auto&) {
            started.set_value();
            released->wait();
            finished->set_value();
            return Thumbnail();
        });
        thumbnails.Request({L"a file on a drive that has gone"});
        started.get_future().wait();
    }
    release->set_value();
    finished->get_future().wait();
}

}  // namespace
}  // namespace orvex
