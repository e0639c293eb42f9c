#include "host/utilities/PhotoContainer.h"

#include <algorithm>
#include <string_view>

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t kMostXmp = std::uint64_t{8} << 20U;
constexpr int kMostParts = 4096;  // segments, chunks or boxes

/// The start of a part, to tell what it holds.
bool StartsWith(PhotoBytes& file, std::uint64_t offset, std::string_view start) {
    return file.Text({offset, start.size()}, start.size()) == start;
}

FileRange After(FileRange range, std::uint64_t skip) {
    return skip <= range.length ? FileRange{range.offset + skip, range.length - skip} : FileRange{};
}

/// Takes the EXIF data of another format's part, but not what it says of the image.
void TakeExif(PhotoBytes& file, FileRange block, PhotoContainer& photo) {
    const std::optional<TiffFacts> facts = ReadTiffDirectories(file, block);
    if (facts && photo.facts.exif.empty()) {
        photo.facts.exif = facts->exif;
        photo.facts.thumbnail = facts->thumbnail;
    }
}

void TakeXmp(PhotoBytes& file, FileRange packet, PhotoContainer& photo) {
    if (photo.xmp.empty()) {
        photo.xmp = file.Text(packet, kMostXmp);
    }
}

constexpr std::int32_t PhotometricOf(std::uint32_t bands) {
    return bands == 1 ? 1 : bands == 3 ? 6 : bands == 4 ? 5 : -1;
}

/// A start-of-frame segment: bits, height, width, components.
void TakeFrame(PhotoBytes& file, std::uint64_t offset, TiffFacts& facts) {
    facts.bits = file.Number<std::uint8_t>(offset, ByteOrder::Big).value_or(0);
    facts.height = file.Number<std::uint16_t>(offset + 1, ByteOrder::Big).value_or(0);
    facts.width = file.Number<std::uint16_t>(offset + 3, ByteOrder::Big).value_or(0);
    facts.bands = file.Number<std::uint8_t>(offset + 5, ByteOrder::Big).value_or(0);
    facts.photometric = PhotometricOf(facts.bands);
}

bool IsStartOfFrame(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

void ReadJpeg(PhotoBytes& file, PhotoContainer& photo) {
    constexpr std::string_view kExif = "Exif\0\0"sv;
    constexpr std::string_view kXmp = "http://ns.adobe.com/xap/1.0/\0"sv;
    std::uint64_t offset = 2;
    for (int part = 0; part < kMostParts; ++part) {
        const auto lead = file.Number<std::uint8_t>(offset, ByteOrder::Big);
        const auto marker = file.Number<std::uint8_t>(offset + 1, ByteOrder::Big);
        if (!lead || !marker || *lead != 0xFF || *marker == 0xDA || *marker == 0xD9) {
            return;
        }
        if (*marker == 0xFF) {
            ++offset;  // a fill byte
            continue;
        }
        const auto length = file.Number<std::uint16_t>(offset + 2, ByteOrder::Big);
        if (!length || *length < 2) {
            return;
        }
        const FileRange segment{offset + 4, std::uint64_t{*length} - 2};
        if (IsStartOfFrame(*marker)) {
            TakeFrame(file, segment.offset, photo.facts);
        } else if (*marker == 0xE1 && StartsWith(file, segment.offset, kExif)) {
            TakeExif(file, After(segment, kExif.size()), photo);
        } else if (*marker == 0xE1 && StartsWith(file, segment.offset, kXmp)) {
            TakeXmp(file, After(segment, kXmp.size()), photo);
        }
        offset += 2 + std::uint64_t{*length};
    }
}

void ReadTiff(PhotoBytes& file, PhotoContainer& photo) {
    if (std::optional<TiffFacts> facts = ReadTiffDirectories(file, {0, file.Size()})) {
        photo.facts = *std::move(facts);
        // One band of one bit is what a TIFF has that does not say it.
        photo.facts.bands = std::max(photo.facts.bands, 1U);
        photo.facts.bits = std::max(photo.facts.bits, 1U);
        TakeXmp(file, photo.facts.xmp, photo);
    }
}

/// Skips texts that end in a zero byte; 0 if one does not end in the range.
std::uint64_t AfterTexts(PhotoBytes& file, FileRange range, std::uint64_t skip, int texts) {
    constexpr std::uint64_t kMost = 1024;
    const std::string start = file.Text({range.offset, std::min(range.length, kMost)}, kMost);
    for (; texts > 0; --texts) {
        const std::size_t end = start.find('\0', static_cast<std::size_t>(skip));
        if (end == std::string::npos) {
            return 0;
        }
        skip = end + 1;
    }
    return skip;
}

void TakePngHeader(PhotoBytes& file, FileRange chunk, TiffFacts& facts) {
    constexpr std::uint32_t kBands[] = {1, 0, 3, 1, 2, 0, 4};
    constexpr std::int32_t kPhotometric[] = {1, -1, 2, 3, 1, -1, 2};
    facts.width = file.Number<std::uint32_t>(chunk.offset, ByteOrder::Big).value_or(0);
    facts.height = file.Number<std::uint32_t>(chunk.offset + 4, ByteOrder::Big).value_or(0);
    facts.bits = file.Number<std::uint8_t>(chunk.offset + 8, ByteOrder::Big).value_or(0);
    const auto kind = file.Number<std::uint8_t>(chunk.offset + 9, ByteOrder::Big).value_or(1);
    facts.bands = kind < std::size(kBands) ? kBands[kind] : 0;
    facts.photometric = kind < std::size(kPhotometric) ? kPhotometric[kind] : -1;
}

void ReadPng(PhotoBytes& file, PhotoContainer& photo) {
    constexpr std::string_view kXmp =
        "XML:com.adobe.xmp\0\0"sv;  // with the mark of a text that is not compressed
    std::uint64_t offset = 8;
    for (int part = 0; part < kMostParts; ++part) {
        const auto length = file.Number<std::uint32_t>(offset, ByteOrder::Big);
        const std::string name = file.Text({offset + 4, 4}, 4);
        if (!length || name.empty() || name == "IEND") {
            return;
        }
        const FileRange chunk{offset + 8, *length};
        if (name == "IHDR") {
            TakePngHeader(file, chunk, photo.facts);
        } else if (name == "eXIf") {
            TakeExif(file, chunk, photo);
        } else if (name == "iTXt" && StartsWith(file, chunk.offset, kXmp)) {
            // Behind the keyword: the method of compression, a language and the keyword in that language.
            const std::uint64_t skip = AfterTexts(file, chunk, kXmp.size() + 1, 2);
            TakeXmp(file, skip == 0 ? FileRange() : After(chunk, skip), photo);
        }
        offset += 12 + std::uint64_t{*length};
    }
}

void TakeJp2Header(PhotoBytes& file, FileRange box, TiffFacts& facts) {
    // The first box inside is the image header: length, "ihdr", then the values.
    if (StartsWith(file, box.offset + 4, "ihdr")) {
        facts.height = file.Number<std::uint32_t>(box.offset + 8, ByteOrder::Big).value_or(0);
        facts.width = file.Number<std::uint32_t>(box.offset + 12, ByteOrder::Big).value_or(0);
        facts.bands = file.Number<std::uint16_t>(box.offset + 16, ByteOrder::Big).value_or(0);
        constexpr std::uint8_t kDiffers = 255;
        const auto bits = file.Number<std::uint8_t>(box.offset + 18, ByteOrder::Big).value_or(kDiffers);
        facts.bits = bits == kDiffers ? 0 : (bits & 0x7FU) + 1U;
        facts.photometric = facts.bands >= 3 ? 2 : 1;
    }
}

void ReadJp2(PhotoBytes& file, PhotoContainer& photo) {
    constexpr std::string_view kXmp = "\xBE\x7A\xCF\xCB\x97\xA9\x42\xE8\x9C\x71\x99\x94\x91\xE3\xAF\xAC"sv;
    constexpr std::string_view kExif = "JpgTiffExif->JP2"sv;
    std::uint64_t offset = 0;
    for (int part = 0; part < kMostParts && offset < file.Size(); ++part) {
        std::uint64_t length = file.Number<std::uint32_t>(offset, ByteOrder::Big).value_or(2);
        const std::string name = file.Text({offset + 4, 4}, 4);
        std::uint64_t header = 8;
        if (length == 1) {
            length = file.Number<std::uint64_t>(offset + 8, ByteOrder::Big).value_or(0);
            header = 16;
        } else if (length == 0) {
            length = file.Size() - offset;
        }
        if (length < header || length > file.Size() - offset) {
            return;
        }
        const FileRange box{offset + header, length - header};
        if (name == "jp2h") {
            TakeJp2Header(file, box, photo.facts);
        } else if (name == "uuid" && StartsWith(file, box.offset, kXmp)) {
            TakeXmp(file, After(box, kXmp.size()), photo);
        } else if (name == "uuid" && StartsWith(file, box.offset, kExif)) {
            TakeExif(file, After(box, kExif.size()), photo);
        }
        offset += length;
    }
}

void ReadGif(PhotoBytes& file, PhotoContainer& photo) {
    photo.facts.width = file.Number<std::uint16_t>(6, ByteOrder::Little).value_or(0);
    photo.facts.height = file.Number<std::uint16_t>(8, ByteOrder::Little).value_or(0);
    photo.facts.bits = 8;
    photo.facts.bands = 1;
    photo.facts.photometric = 3;
}

void ReadBmp(PhotoBytes& file, PhotoContainer& photo) {
    TiffFacts& facts = photo.facts;
    constexpr std::uint32_t kOldHeader = 12;
    const std::uint32_t header = file.Number<std::uint32_t>(14, ByteOrder::Little).value_or(0);
    if (header == kOldHeader) {
        facts.width = file.Number<std::uint16_t>(18, ByteOrder::Little).value_or(0);
        facts.height = file.Number<std::uint16_t>(20, ByteOrder::Little).value_or(0);
    } else {
        facts.width = file.Number<std::uint32_t>(18, ByteOrder::Little).value_or(0);
        // Negative for an image that starts at the top.
        const auto height =
            static_cast<std::int32_t>(file.Number<std::uint32_t>(22, ByteOrder::Little).value_or(0));
        facts.height =
            height < 0 ? 0U - static_cast<std::uint32_t>(height) : static_cast<std::uint32_t>(height);
    }
    const auto bits =
        file.Number<std::uint16_t>(header == kOldHeader ? 24 : 28, ByteOrder::Little).value_or(0);
    facts.bands = bits == 32 ? 4 : bits > 8 ? 3 : 1;
    facts.bits = bits == 16 ? 5U : bits / facts.bands;
    facts.photometric = bits > 8 ? 2 : 3;
}

struct Format {
    std::string_view start;
    const wchar_t* name;
    void (*read)(PhotoBytes& file, PhotoContainer& photo);
};
constexpr Format kFormats[] = {
    {"\xFF\xD8\xFF"sv, L"JPEG", ReadJpeg},
    {"II*\0"sv, L"TIFF", ReadTiff},
    {"MM\0*"sv, L"TIFF", ReadTiff},
    {"II+\0"sv, L"BigTIFF", ReadTiff},
    {"MM\0+"sv, L"BigTIFF", ReadTiff},
    {"\x89PNG\r\n\x1A\n"sv, L"PNG", ReadPng},
    {"\0\0\0\x0CjP  \r\n\x87\n"sv, L"JPEG 2000", ReadJp2},
    {"GIF8"sv, L"GIF", ReadGif},
    {"BM"sv, L"BMP", ReadBmp},
};

}  // namespace

PhotoContainer ReadPhotoContainer(PhotoBytes& file) {
    const auto* const format = std::ranges::find_if(
        kFormats, [&](const Format& candidate) { return StartsWith(file, 0, candidate.start); });
    if (format == std::end(kFormats)) {
        throw LDataError(Text(text::kPhotoFormatUnsupported));
    }
    PhotoContainer photo;
    photo.fileType = format->name;
    format->read(file, photo);
    const TiffFacts& facts = photo.facts;
    if (facts.width == 0 && facts.height == 0 && facts.exif.empty() && photo.xmp.empty()) {
        throw LDataError(Text(text::kPhotoDamaged));
    }
    return photo;
}

}  // namespace orvex
