#include <cstdint>
#include <string_view>

#include "fuzz/Seeds.h"
#include "raster/testing/TiffBytes.h"

namespace orvex::fuzz {
namespace {

using orvex::testing::TiffBytes;
using namespace std::string_literals;

constexpr char kMosaic[] =
    R"(<VRTDataset rasterXSize="2" rasterYSize="1"><VRTRasterBand dataType="Byte" band="1"><SimpleSource>)"
    R"(<SourceFilename>input.tif</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>)";

constexpr unsigned kBytes = 1;
constexpr unsigned kAscii = 2;
constexpr unsigned kShort = 3;
constexpr unsigned kLong = 4;

std::vector<std::uint64_t> Characters(std::string_view text) {
    return {text.begin(), text.end()};
}

/// 4 x 2 pixels of one byte each; the pixels are the first bytes of the file.
TiffBytes Small(TiffBytes tiff) {
    return tiff.Image(4, 2, 0, 8);
}

TiffBytes Placed(TiffBytes tiff) {
    return Small(std::move(tiff))
        .Doubles(33550, {10, 10, 0})
        .Doubles(33922, {0, 0, 0, 500000, 5300000, 0})
        .Tag(34735, kShort, {1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 2, 3072, 0, 1, 32633});
}

/// With optional tags: palette, no-data value, metadata, transformation matrix, user-defined GeoKeys.
TiffBytes Rich() {
    const std::string metadata =
        "<GDALMetadata><Item name=\"STATISTICS_MINIMUM\" sample=\"0\">1</Item>"
        "<Item name=\"OFFSET\" sample=\"0\" role=\"offset\">nan</Item></GDALMetadata>\0"s;
    return Small(TiffBytes())
        .Tag(262, kShort, {3})
        .Tag(320, kShort, std::vector<std::uint64_t>(768, 0x1234))
        .Tag(306, kAscii, Characters("2020:01:02 03:04:05\0"s))
        .Doubles(34264, {1, 0.5, 0, 100, 0.5, -1, 0, 200, 0, 0, 0, 0, 0, 0, 0, 1})
        .Tag(34735, kShort,
             {1, 1, 0, 4, 1024, 0, 1, 1, 3072, 0, 1, 32767, 3073, 34737, 5, 0, 3076, 0, 1, 9001})
        .Tag(34737, kAscii, Characters("Grid|\0"s))
        .Tag(42112, kAscii, Characters(metadata))
        .Tag(42113, kAscii, Characters("-9999\0"s));
}

TiffBytes Floats(TiffBytes tiff) {
    return Placed(std::move(tiff)).Tag(258, kShort, {32}).Tag(339, kShort, {3}).Tag(279, kLong, {32});
}

}  // namespace

// Classic and big TIFF in both byte orders, other formats that take only a few bytes, and damage that once
// caused trouble.
std::vector<std::string> Seeds() {
    using enum TiffBytes::Format;
    std::vector<std::string> seeds{
        "",
        "II*\0"s,
        std::string(64, '\0'),
        Rich().Build(),
        Small(TiffBytes()).Next(8).Build(),
        Small(TiffBytes()).Tag(254, kLong, {1}).Next(8).Build(),
        Small(TiffBytes()).Claim(34735, kShort, 0xFFFFFFFF, 8).Build(),
        Small(TiffBytes()).Tag(259, kShort, {50000}).Build(),
        Small(TiffBytes()).Tag(330, kLong, {8, 8}).Tag(34665, kLong, {8}).Build(),
        Small(TiffBytes()).Tag(700, kBytes, Characters("<x:xmpmeta/>")).Build(),
        TiffBytes().Image(65535, 65535, 8, 1).Build(),
        "ncols 3\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 5\nNODATA_value -1\n1 2 3\n-1 4 nan\n",
        "P5\n3 2\n255\n123456",
        "GIF89a\4\0\2\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\4\0\2\0\0\2\3\x8C\x8F\5\0;"s,
        kMosaic,
    };
    for (const auto format : {Classic, Big}) {
        for (const auto order : {TiffBytes::Order::Little, TiffBytes::Order::Big}) {
            seeds.push_back(Placed(TiffBytes(format, order)).Build());
            seeds.push_back(Floats(TiffBytes(format, order)).Build());
        }
    }
    return seeds;
}

}  // namespace orvex::fuzz
