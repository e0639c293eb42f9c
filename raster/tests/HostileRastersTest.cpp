// Rasters that claim more than they hold: each gives a row with a plain reason, in bounded time and memory.
#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "raster/RasterRow.h"
#include "raster/testing/TiffBytes.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using testing::TemporaryFolder;
using testing::TiffBytes;
using namespace std::string_literals;

constexpr std::uint64_t kMost32 = 0xFFFFFFFF;
constexpr std::uint64_t kMegabyte = std::uint64_t{1024} * 1024;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t kMostMemory = 400 * kMegabyte;  // they keep books of all memory
#else
constexpr std::uint64_t kMostMemory = 100 * kMegabyte;
#endif
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TiffBytes Image(std::uint64_t width, std::uint64_t height) {
    return TiffBytes().Image(width, height, 8, 1);
}

/// An image of one pixel that is as it should be.
TiffBytes Pixel() {
    return Image(1, 1);
}

struct Hostile {
    const char* about;
    std::string bytes;
    bool loadable;
    const char* finding;  ///< a part of the worst one's text
};

/// A pixel with a georeference.
TiffBytes Placed(const std::vector<double>& scale, const std::vector<double>& tie) {
    return Pixel().Doubles(33550, scale).Doubles(33922, tie);
}

std::vector<Hostile> ImpossibleSizes() {
    return {
        {"65535 x 65535 in a few bytes", Image(65535, 65535).Build(), true, "cut off"},
        {"4 billion strips whose list is beyond the end",
         Image(1, kMost32 / 2)
             .Tag(278, 4, {1})
             .Claim(273, 4, kMost32 / 2, 1000)
             .Claim(279, 4, kMost32 / 2, 2000)
             .Build(),
         true, "cut off"},
        {"2^31 wide", Image(std::uint64_t{1} << 31U, 1).Build(), false,
         "larger than any image that can be read (2147483648 x 1 pixels)"},
        {"2^32 - 1 in both", Image(kMost32, kMost32).Build(), false, "It holds no image."},
        {"no width", Image(0, 1).Build(), false, "cannot be read"},
        {"a tile of 2^31",
         Image(1, 1)
             .Tag(322, 4, {std::uint64_t{1} << 31U})
             .Tag(323, 4, {16})
             .Tag(324, 4, {8})
             .Tag(325, 4, {1})
             .Build(),
         false, "tiles or strips"},
        {"65535 bands, each a plane", Image(1, 1).Tag(277, 3, {65535}).Tag(284, 3, {2}).Build(), true,
         "cut off or damaged: where its image data lies"},
        {"65535 bands in pixels", Image(1, 1).Tag(277, 3, {65535}).Build(), true,
         "reach to byte 65,543, but the file has"},
    };
}

std::vector<Hostile> DirectoriesThatLeadNowhere() {
    return {
        {"the four bytes of the signature", "II*\0"s, false, "cannot be read"},
        {"a directory beyond the end", "II*\0\xff\xff\xff\x7f"s, false,
         "A directory of the file cannot be read."},
        {"a directory of 65535 tags, cut off", "II*\0\x08\0\0\0\xff\xff\0\x01"s, false,
         "A directory of the file cannot be read."},
        {"a directory that ends in its middle", Pixel().Build().substr(0, 60), false,
         "A directory of the file cannot be read."},
        {"a directory that follows itself", Pixel().Next(8).Build(), true, "leads back to an earlier one"},
        {"a directory beyond the end that follows", Pixel().Next(0x7FFFFFFF).Build(), true,
         "A directory of the file cannot be read."},
        {"a BigTIFF's directory of 2^63 tags", "II\x2b\0\x08\0\0\0\x10\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x80"s,
         false, "A directory of the file cannot be read."},
        {"no tags", TiffBytes().Build(), false, "A directory of the file cannot be read."},
    };
}

std::vector<Hostile> TagsThatClaimTooMuch() {
    return {
        {"an unknown codec", Pixel().Tag(259, 3, {65000}).Build(), false,
         "compressed by a method that cannot be read here"},
        {"2^32 - 1 bits per sample", Pixel().Claim(258, 3, kMost32, 8).Build(), false,
         "The entry 'BitsPerSample' of the file is damaged"},
        {"a text of 4 GiB", Pixel().Claim(270, 2, kMost32, 8).Build(), true,
         "The entry 'ImageDescription' of the file is damaged"},
        {"a palette beyond the end", Pixel().Tag(262, 3, {3}).Claim(320, 3, 768, 0x7FFFFF00).Build(), true,
         "The entry 'ColorMap' of the file is damaged"},
        {"strips of 4 GiB", Pixel().Tag(279, 4, {kMost32}).Build(), true, "sizes of its image data wrongly"},
        {"1000 million overviews in sub-directories", Pixel().Claim(330, 4, 1'000'000'000, 8).Build(), true,
         "The entry 'SubIFD' of the file is damaged"},
        {"data of 2^63 bytes",
         TiffBytes(TiffBytes::Format::Big).Image(1, 1, 8, 1).Tag(279, 16, {std::uint64_t{1} << 63U}).Build(),
         true, "sizes of its image data wrongly"},
        {"data at 2^64 - 1",
         TiffBytes(TiffBytes::Format::Big, TiffBytes::Order::Big)
             .Image(1, 1, 8, 1)
             .Tag(273, 16, {std::numeric_limits<std::uint64_t>::max()})
             .Build(),
         true, "reach to byte 18,446,744,073,709,551,615, but"},
    };
}

std::vector<Hostile> SenselessGeoreferences() {
    return {
        {"a pixel of no number", Placed({kNan, kNan, 0}, {0, 0, 0, 1, 2, 0}).Build(), true,
         "the numbers in it make no sense"},
        {"an origin of no number", Placed({1, 1, 0}, {0, 0, 0, kNan, 2, 0}).Build(), true,
         "the numbers in it make no sense"},
        {"pixels without size", Placed({0, 0, 0}, {0, 0, 0, 1, 2, 0}).Build(), true,
         "by ground control points only (1 of them)"},
        {"an extent that overflows",
         Placed({std::numeric_limits<double>::max(), 1, 0},
                {0, 0, 0, std::numeric_limits<double>::max(), 2, 0})
             .Build(),
         true, "the numbers in it make no sense"},
        {"keys of garbage",
         Placed({1, 1, 0}, {0, 0, 0, 1, 2, 0}).Tag(34735, 3, {1, 1, 0, 65535, 3072, 9, 65535, 65535}).Build(),
         true, "The coordinate reference system of the file cannot be read."},
        {"a projected CRS of an unknown code",
         Placed({1, 1, 0}, {0, 0, 0, 1, 2, 0})
             .Tag(34735, 3, {1, 1, 0, 2, 1024, 0, 1, 1, 3072, 0, 1, 65000})
             .Build(),
         true, "coordinate reference system that is not known"},
    };
}

std::vector<Hostile> FilesThatAreNoRasters() {
    return {
        {"an empty file", "", false, "The file is empty."},
        {"a text", "This is not an image.\n", false, "cannot be read"},
        {"a description of a server's images",
         "<GDAL_WMS><Service name=\"TMS\"><ServerUrl>http://127.0.0.1:9/</ServerUrl></Service></GDAL_WMS>",
         false, "cannot be read"},
        {"an image to be computed from others when opened",
         "<VRTDataset rasterXSize=\"1\" rasterYSize=\"1\" subClass=\"VRTWarpedDataset\"/>", false,
         "computed from other files"},
    };
}

std::string BigEndian(std::uint64_t number, unsigned bytes) {
    std::string text;
    for (unsigned i = bytes; i-- > 0;) {
        text += static_cast<char>(number >> (8 * i));
    }
    return text;
}

/// A JPEG 2000 codestream of one-pixel tiles, without their data.
std::string Codestream(unsigned components, unsigned tilesX, unsigned tilesY) {
    std::string size = BigEndian(0, 2);
    for (const unsigned number : {tilesX, tilesY, 0U, 0U, 1U, 1U, 0U, 0U}) {
        size += BigEndian(number, 4);
    }
    size += BigEndian(components, 2);
    for (unsigned i = 0; i < components; ++i) {
        size += "\x07\x01\x01";
    }
    return "\xff\x4f\xff\x51" + BigEndian(size.size() + 2, 2) + size +
           "\xff\x52\0\x0c\0\0\0\x01\0\0\x04\x04\0\x01\xff\x5c\0\x04\x40\x48"
           "\xff\x90\0\x0a\0\0\0\0\0\0\0\x01\xff\x93\0\0\0\xff\xd9"s;
}

/// The codestream in its container, behind a box of `padding` bytes.
std::string Jp2(const std::string& codestream, unsigned components, unsigned tilesX, unsigned tilesY,
                std::size_t padding) {
    const auto box = [](const std::string& type, const std::string& content) {
        return BigEndian(content.size() + 8, 4) + type + content;
    };
    return box("jP  ", "\r\n\x87\n") + box("ftyp", "jp2 \0\0\0\0jp2 "s) +
           box("jp2h", box("ihdr", BigEndian(tilesY, 4) + BigEndian(tilesX, 4) + BigEndian(components, 2) +
                                       "\x07\x07\0\0"s) +
                           box("colr", "\x01\0\0"s + BigEndian(17, 4))) +
           box("free", std::string(padding, '\0')) + box("jp2c", codestream);
}

TEST(HostileRasters, DecodersTakeNoMoreThanTheirShare) {
    const TemporaryFolder folder;
    InspectRasterFile(folder.Write(L"first.tif", Pixel().Build()), RasterUse::Image);
    constexpr struct {
        unsigned components;
        unsigned tilesX;
        unsigned tilesY;
    } kImages[] = {{1, 1000, 1000}, {16384, 8, 8}, {3, 65535, 1}};
    for (const auto& image : kImages) {
        const std::string bytes = Codestream(image.components, image.tilesX, image.tilesY);
        // Behind paddings with which the markers lie in one read, and across two of a megabyte.
        for (const std::size_t padding :
             {0U, 1048576U - 0x59U, 1048576U - 0x5AU, 1048576U - 0x5BU, 1048576U - 0x58U}) {
            const std::wstring path =
                folder.Write(L"a.jp2", Jp2(bytes, image.components, image.tilesX, image.tilesY, padding));
            const std::uint64_t before = testing::PeakMemory();
            const RasterRow row = InspectRasterFile(path, RasterUse::Image);
            EXPECT_LT(testing::PeakMemory() - before, kMostMemory) << image.tilesX << ' ' << padding;
            EXPECT_THAT(ToUtf8(row.summary), HasSubstr("more tiles or strips")) << padding;
        }
    }
    const std::wstring few = folder.Write(L"b.jp2", Jp2(Codestream(3, 10, 10), 3, 10, 10, 0));
    EXPECT_TRUE(InspectRasterFile(few, RasterUse::Image).loadable);
}

/// A GIF file of frames in one colour. Each run of codes gives 254 * 255 / 2 pixels.
std::string Gif(unsigned side, unsigned frames) {
    constexpr unsigned kClear = 256;
    constexpr unsigned kLast = 510;  // codes stay at nine bits
    constexpr unsigned kPixelsOfRun = 254 * 255 / 2;
    std::string codes;
    std::uint32_t bits = 0;
    unsigned count = 0;
    const auto put = [&](std::uint32_t code) {
        bits |= code << count;
        for (count += 9; count >= 8; count -= 8, bits >>= 8U) {
            codes += static_cast<char>(bits & 0xFFU);
        }
    };
    for (unsigned pixels = 0; pixels < side * side; pixels += kPixelsOfRun) {
        put(kClear);
        put(0);
        for (unsigned code = kClear + 2; code <= kLast; ++code) {
            put(code);
        }
    }
    const std::string size =
        testing::Bytes(static_cast<std::uint16_t>(side), static_cast<std::uint16_t>(side));
    std::string frame = "," + std::string(4, '\0') + size + "\0\x08"s;
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        const std::string block = codes.substr(at, 255);
        frame += static_cast<char>(block.size()) + block;
    }
    frame += '\0';
    std::string gif = "GIF89a" + size + "\xF7\0\0"s + std::string(768, '\0');
    for (unsigned i = 0; i < frames; ++i) {
        gif += frame;
    }
    return gif + ";";
}

std::string PngChunk(const std::string& type, const std::string& data) {
    std::uint32_t check = 0xFFFFFFFF;
    for (const char letter : type + data) {
        check ^= static_cast<unsigned char>(letter);
        for (int bit = 0; bit < 8; ++bit) {
            check = (check >> 1U) ^ ((check & 1U) != 0 ? 0xEDB88320U : 0);
        }
    }
    return BigEndian(data.size(), 4) + type + data + BigEndian(~check, 4);
}

std::string Deflated(const std::string& text) {
    std::size_t size = 0;
    const std::unique_ptr<void, decltype(&VSIFree)> bytes(
        CPLZLibDeflate(text.data(), text.size(), -1, nullptr, 0, &size), VSIFree);
    return {static_cast<const char*>(bytes.get()), size};
}

/// A pixel with as many texts of 7.9 MB.
std::string Png(unsigned texts) {
    const std::string text = PngChunk("zTXt", "a\0\0"s + Deflated(std::string(7'900'000, ' ')));
    std::string png =
        "\x89PNG\r\n\x1a\n" + PngChunk("IHDR", BigEndian(1, 4) + BigEndian(1, 4) + "\x08\0\0\0\0"s);
    for (unsigned i = 0; i < texts; ++i) {
        png += text;
    }
    return png + PngChunk("IDAT", Deflated("\0\0"s)) + PngChunk("IEND", "");
}

/// A run-length encoded image with all of its pixels. `side`: a multiple of 20.
std::string Bmp(std::uint32_t side) {
    std::string runs;
    for (std::uint32_t row = 0; row < side; ++row) {
        for (std::uint32_t pixels = 0; pixels < side; pixels += 20) {
            runs += "\x14\0"s;
        }
        runs += "\0\0"s;
    }
    runs += "\0\1"s;
    const std::uint32_t none = 0;
    const auto size = static_cast<std::uint32_t>(1078 + runs.size());
    return "BM" +
           testing::Bytes(size, none, std::uint32_t{1078}, std::uint32_t{40}, side, side, std::uint16_t{1}) +
           testing::Bytes(std::uint16_t{8}, std::uint32_t{1}, none, none, none, std::uint32_t{256}, none) +
           std::string(1024, '\0') + runs;
}

/// `count` texts with a number in each.
std::string Numbered(const char* before, const char* after, int count = 20000) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += before + std::to_string(i) + after;
    }
    return text;
}

TEST(HostileRasters, WhatIsUnpackedAtOpeningTakesNoMoreThanItsShare) {
    const TemporaryFolder folder;
    const std::string tiff = Pixel().Build();
    const std::string envi =
        "ENVI\nsamples = 1\nlines = 1\nbands = 1\ndata type = 1\ninterleave = bsq\nbyte order = 0\n";
    const std::string band = "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>";
    const std::string domains = Numbered("<Metadata domain=\"", "\"/>");
    const struct {
        std::wstring name;
        std::string bytes;
        bool loadable;
        const char* finding;
        std::wstring sidecar = {};
        std::string sidecarBytes = {};
    } files[] = {
        {L"few.png", Png(2), true, "no georeference"},
        {L"many.png", Png(40), false, "Too much of it"},
        {L"frames.gif", Gif(10000, 3), true, "no georeference"},
        {L"runs.bmp", Bmp(12000), false, "Too much of it"},
        {L"few.bmp", Bmp(20), true, "no georeference"},
        {L"domains.vrt", "<VRTDataset rasterXSize=\"1\" rasterYSize=\"1\">" + domains + band, false,
         "Too much of it"},
        {L"domains.tif", tiff, true, "Too much of it", L"domains.tif.aux.xml",
         "<PAMDataset>" + domains + "</PAMDataset>"},
        {L"keys.img", "xx", true, "Too much of it", L"keys.hdr", envi + Numbered("key", " = 1\n")},
        {L"few.img", "xx", true, "no georeference", L"few.hdr", envi + Numbered("key", " = 1\n", 200)},
    };
    InspectRasterFile(folder.Write(L"first.tif", tiff), RasterUse::Image);
    for (const auto& file : files) {
        const std::wstring path = folder.Write(file.name, file.bytes);
        if (!file.sidecar.empty()) {
            folder.Write(file.sidecar, file.sidecarBytes);
        }
        const std::uint64_t before = testing::PeakMemory();
        const RasterRow row = InspectRasterFile(path, RasterUse::Image);
        EXPECT_LT(testing::PeakMemory() - before, kMostMemory) << ToUtf8(file.name);
        EXPECT_EQ(row.loadable, file.loadable) << ToUtf8(file.name);
        EXPECT_THAT(ToUtf8(FindingsText(row)), HasSubstr(file.finding)) << ToUtf8(file.name);
    }
}

TEST(HostileRasters, LongTagsAndSidecarsAreNotReadWhole) {
    constexpr std::uint64_t kGigabyte = 1024 * kMegabyte;
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.tif", Pixel().Build());
    InspectRasterFile(path, RasterUse::Image);
    const auto check = [](const std::wstring& file, bool loadable, const char* about) {
        const std::uint64_t before = testing::PeakMemory();
        const RasterRow row = InspectRasterFile(file, RasterUse::Image);
        EXPECT_LT(testing::PeakMemory() - before, kMostMemory) << about;
        EXPECT_EQ(row.loadable, loadable) << about;
        EXPECT_THAT(ToUtf8(FindingsText(row)), HasSubstr("Too much of it")) << about;
    };
    for (const unsigned tag : {270U, 42112U, 700U}) {
        const std::wstring tagged = folder.Write(
            L"b.tif",
            TiffBytes(TiffBytes::Format::Big).Image(1, 1, 8, 1).Claim(tag, 2, kGigabyte, 4096).Build());
        testing::GrowSparse(tagged, kGigabyte + 8192);
        check(tagged, true, "a long tag");
    }
    for (const wchar_t* const sidecar : {L"a.tif.aux.xml", L"a.tfw", L"a.prj"}) {
        const std::wstring name = folder.Write(sidecar, "<PAMDataset>");
        testing::GrowSparse(name, kGigabyte);
        const std::uint64_t before = testing::PeakMemory();
        InspectRasterFile(path, RasterUse::Image);
        EXPECT_LT(testing::PeakMemory() - before, kMostMemory) << ToUtf8(name);
    }
    const std::wstring vrt = folder.Write(L"c.tif", "<VRTDataset>");
    testing::GrowSparse(vrt, kGigabyte);
    check(vrt, false, "a document");
    std::string nested;
    for (int i = 0; i < 1'000'000; ++i) {
        nested += "<a>";
    }
    const std::wstring deep = folder.Write(L"d.tif", "<VRTDataset>" + nested);
    EXPECT_FALSE(InspectRasterFile(deep, RasterUse::Image).loadable);
}

TEST(HostileRasters, GiveAPlainReasonInBoundedMemory) {
    const TemporaryFolder folder;
    // The memory that the libraries take once does not count.
    InspectRasterFile(folder.Write(L"first.tif", Pixel().Build()), RasterUse::Image);
    for (auto* group : {ImpossibleSizes, DirectoriesThatLeadNowhere, TagsThatClaimTooMuch,
                        SenselessGeoreferences, FilesThatAreNoRasters}) {
        for (const Hostile& hostile : group()) {
            const std::wstring path = folder.Write(L"a.tif", hostile.bytes);
            const std::uint64_t before = testing::PeakMemory();
            const RasterRow row = InspectRasterFile(path, RasterUse::Image);
            EXPECT_LT(testing::PeakMemory() - before, kMostMemory) << hostile.about;
            EXPECT_EQ(row.loadable, hostile.loadable) << hostile.about;
            EXPECT_THAT(ToUtf8(row.summary), HasSubstr(hostile.finding)) << hostile.about;
            EXPECT_FALSE(row.findings.empty()) << hostile.about;
        }
    }
    EXPECT_EQ(folder.Entries(), 2U) << "nothing was written beside them";
}

}  // namespace
}  // namespace orvex
