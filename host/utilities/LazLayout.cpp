#include "host/utilities/LazLayout.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <vector>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {

MappedFile OpenForReading(const std::wstring& path, std::uint64_t& size) {
    MappedFile file;
    SystemError error = file.Open(path, true);
    if (error == 0) {
        error = file.Size(size);
    }
    if (error != 0) {
        throw LDataError(FormatText(Text(text::kLazCannotRead), {path, SystemErrorText(error)}));
    }
    return file;
}

namespace {

bool IsKnownPoint(std::uint8_t formatByte, std::uint16_t recordLength) {
    const las::PointFormatFacts* const format = las::FindPointFormat(formatByte & ~las::kCompressionBits);
    return format != nullptr && recordLength >= format->minimumLength;
}

void RequirePlausible(const LazLayout& layout, const std::wstring& path) {
    const bool headerFits = layout.headerSize >= las::kLegacyHeaderSize &&
                            layout.offsetToPoints >= layout.headerSize &&
                            layout.offsetToPoints <= layout.fileSize;
    // A header of the version's full size is what the codec reads, whatever size is announced.
    const std::size_t version = std::min<std::size_t>(layout.versionMinor, las::kVersions.size() - 1);
    const std::uint16_t needed = las::kVersions[version].headerSize;
    if (!headerFits || layout.headerSize < needed ||
        layout.recordCount > (layout.offsetToPoints - layout.headerSize) / las::kVlrHeaderSize) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path}));
    }
}

bool IsWaveform(const std::string& userId, std::uint16_t recordId) {
    return userId == las::kSpecUserId && recordId == las::kWaveformRecordId;
}

}  // namespace

std::vector<std::byte> ReadPart(const MappedFile& file, std::uint64_t offset, std::uint64_t length) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(length));
    std::size_t read = 0;
    if (file.ReadAt(offset, bytes, read) != 0) {
        read = 0;
    }
    bytes.resize(read);
    return bytes;
}

LazLayout ReadLazLayout(const std::wstring& path) {
    LazLayout layout;
    const MappedFile file = OpenForReading(path, layout.fileSize);
    std::array<std::byte, las::kHeaderSize14> buffer{};
    std::size_t read = 0;
    if (const SystemError error = file.ReadAt(0, buffer, read); error != 0) {
        throw LDataError(FormatText(Text(text::kLazCannotRead), {path, SystemErrorText(error)}));
    }
    const ByteReader header(std::span<const std::byte>(buffer).first(read));
    if (read < las::kLegacyHeaderSize ||
        header.FixedText(las::at::kSignature, las::kSignature.size()) != las::kSignature) {
        throw LDataError(FormatText(Text(text::kLazNotLas), {path}));
    }
    layout.versionMinor = header.Read<std::uint8_t>(las::at::kVersionMinor);
    layout.headerSize = header.Read<std::uint16_t>(las::at::kHeaderSize);
    layout.offsetToPoints = header.Read<std::uint32_t>(las::at::kOffsetToPoints);
    layout.recordCount = header.Read<std::uint32_t>(las::at::kVlrCount);
    RequirePlausible(layout, path);
    layout.recordLength = header.Read<std::uint16_t>(las::at::kPointRecordLength);
    layout.hasPoints = header.Read<std::uint32_t>(las::at::kLegacyPointCount) != 0 ||
                       (layout.versionMinor >= 4 && header.Read<std::uint64_t>(las::at::kPointCount) != 0);
    const auto format = header.Read<std::uint8_t>(las::at::kPointFormat);
    layout.isCompressed = (format & las::kCompressionBits) != 0;
    if (!IsKnownPoint(format, layout.recordLength)) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path}));
    }
    const bool internalWaveform =
        (header.Read<std::uint16_t>(las::at::kGlobalEncoding) & las::encoding::kInternalWaveform) != 0;
    if (layout.versionMinor >= 3 && internalWaveform) {
        layout.waveformStart = header.Read<std::uint64_t>(las::at::kWaveformStart);
    }
    if (layout.versionMinor >= 4) {
        layout.extendedStart = header.Read<std::uint64_t>(las::at::kEvlrStart);
        layout.extendedRecordCount = header.Read<std::uint32_t>(las::at::kEvlrCount);
    }
    return layout;
}

std::vector<ExtendedRecord> ReadExtendedRecords(const std::wstring& path, const LazLayout& layout) {
    std::vector<ExtendedRecord> records;
    // LAS 1.3 has one such record, the waveform's, and no count of them.
    std::uint64_t offset = layout.versionMinor >= 4 ? layout.extendedStart : layout.waveformStart;
    std::uint64_t left = layout.versionMinor >= 4 ? layout.extendedRecordCount : (offset != 0 ? 1 : 0);
    if (left == 0 || offset < layout.offsetToPoints) {
        return records;
    }
    std::uint64_t size = 0;
    const MappedFile file = OpenForReading(path, size);
    std::array<std::byte, las::kEvlrHeaderSize> buffer{};
    for (; left > 0 && offset <= size && size - offset >= las::kEvlrHeaderSize; --left) {
        std::size_t read = 0;
        if (file.ReadAt(offset, buffer, read) != 0 || read < buffer.size()) {
            break;
        }
        const ByteReader header(buffer);
        const std::string userId = header.FixedText(las::record_at::kUserId, las::kUserIdLength);
        const auto length = header.Read<std::uint64_t>(las::record_at::kLength);
        if (length > size - offset - las::kEvlrHeaderSize) {
            break;
        }
        if (userId != las::kCopcUserId) {
            records.push_back({offset, las::kEvlrHeaderSize + length,
                               IsWaveform(userId, header.Read<std::uint16_t>(las::record_at::kRecordId)) ||
                                   offset == layout.waveformStart});
        }
        offset += las::kEvlrHeaderSize + length;
    }
    return records;
}

namespace {

constexpr std::uint64_t kItemsOffset = 34;
constexpr std::uint64_t kItemSize = 6;
// Compressors: 1 one stream of points, 2 chunks, 3 chunks in layers.
constexpr std::uint16_t kFirstCompressor = 1, kFirstChunkedCompressor = 2, kLastCompressor = 3;
// Records that are looked through for the codec's own, which writers put among the first.
constexpr std::uint32_t kMostRecords = 1U << 16U;
constexpr std::uint32_t kVaryingChunks = std::numeric_limits<std::uint32_t>::max();

/// Bytes of an item by its kind; 0 for kinds whose size is free (extra bytes) or that are not used in files.
constexpr std::array<std::uint16_t, 15> kItemSizes = {0, 0, 0, 0, 0, 0, 20, 8, 6, 29, 30, 6, 8, 29, 0};
constexpr std::uint16_t kExtraBytes = 0, kFirstLayeredItem = 10, kExtraBytes14 = 14;

[[noreturn]] void Fail(StringId text, const std::wstring& path) {
    throw LDataError(FormatText(Text(text), {path}));
}

/// The payload of the codec's record among the records between header and points.
std::optional<std::vector<std::byte>> ReadCodecRecord(const MappedFile& file, const LazLayout& layout) {
    std::uint64_t offset = layout.headerSize;
    for (std::uint32_t left = std::min(layout.recordCount, kMostRecords);
         left > 0 && offset + las::kVlrHeaderSize <= layout.offsetToPoints; --left) {
        const std::vector<std::byte> bytes = ReadPart(file, offset, las::kVlrHeaderSize);
        const ByteReader header(bytes);
        const auto length = header.Read<std::uint16_t>(las::record_at::kLength);
        offset += las::kVlrHeaderSize;
        if (header.FixedText(las::record_at::kUserId, las::kUserIdLength) == las::kCodecUserId &&
            header.Read<std::uint16_t>(las::record_at::kRecordId) == las::kCodecRecordId) {
            const std::uint64_t present = std::min<std::uint64_t>(length, layout.offsetToPoints - offset);
            return ReadPart(file, offset, present);
        }
        offset += length;
    }
    return std::nullopt;
}

bool AreItemsRight(const ByteReader& record, std::uint16_t recordLength) {
    const auto count = record.Read<std::uint16_t>(kItemsOffset - 2);
    if (count == 0 || record.Size() != kItemsOffset + kItemSize * count) {
        return false;
    }
    std::uint64_t total = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto kind = record.Read<std::uint16_t>(kItemsOffset + i * kItemSize);
        const auto size = record.Read<std::uint16_t>(kItemsOffset + i * kItemSize + 2);
        const bool isFree = kind == kExtraBytes || kind == kExtraBytes14;
        // Version 0 would say that the item is not compressed.
        const auto version = record.Read<std::uint16_t>(kItemsOffset + i * kItemSize + 4);
        const bool isVersionKnown =
            kind < kFirstLayeredItem ? version >= 1 && version <= 2 : version >= 2 && version <= 4;
        if (kind >= kItemSizes.size() || !isVersionKnown || size == 0 ||
            (!isFree && size != kItemSizes[kind])) {
            return false;
        }
        total += size;
    }
    return total == recordLength;
}

std::optional<std::uint64_t> NumberAt(const MappedFile& file, std::uint64_t offset) {
    const std::vector<std::byte> bytes = ReadPart(file, offset, 8);
    return ByteReader(bytes).TryRead<std::uint64_t>(0);
}

/// The points start with the place of the table; -1 there means that the place is in the file's last 8 bytes.
/// A writer that was interrupted leaves its own place there: then chunks of one size can still be found,
/// those of varying size cannot.
LazChunkTable FindChunkTable(const std::wstring& path, const MappedFile& file, const LazLayout& layout,
                             bool varies) {
    std::optional<std::uint64_t> place = NumberAt(file, layout.offsetToPoints);
    if (place == std::numeric_limits<std::uint64_t>::max()) {
        place = NumberAt(file, layout.fileSize - 8);
    }
    if (place == layout.offsetToPoints && !varies) {
        return {};
    }
    if (!place || *place <= layout.offsetToPoints || *place >= layout.fileSize) {
        Fail(text::kLazChunkTableMissing, path);
    }
    const std::vector<std::byte> table = ReadPart(file, *place, 8);
    const auto chunks = ByteReader(table).TryRead<std::uint32_t>(4);
    if (ByteReader(table).Read<std::uint32_t>(0) != 0 || !chunks || *chunks == 0 ||
        *chunks > layout.fileSize) {
        Fail(text::kLazChunkTableMissing, path);
    }
    return {*place, std::uint64_t{layout.offsetToPoints} + 8, 0};
}

}  // namespace

LazChunkTable RequireUsableCodecRecord(const std::wstring& path, const LazLayout& layout) {
    std::uint64_t size = 0;
    const MappedFile file = OpenForReading(path, size);
    const std::optional<std::vector<std::byte>> bytes = ReadCodecRecord(file, layout);
    if (!bytes && layout.isCompressed) {
        Fail(text::kLazCodecRecordDamaged, path);
    }
    if (!bytes) {
        return {};
    }
    const ByteReader record(*bytes);
    const auto compressor = record.Read<std::uint16_t>(0);
    if (compressor < kFirstCompressor || compressor > kLastCompressor ||
        !AreItemsRight(record, layout.recordLength)) {
        Fail(text::kLazCodecRecordDamaged, path);
    }
    if (compressor < kFirstChunkedCompressor || !layout.hasPoints) {
        return {};
    }
    const auto chunkSize = record.Read<std::uint32_t>(12);
    const bool varies = chunkSize == kVaryingChunks;
    LazChunkTable table = FindChunkTable(path, file, layout, varies);
    table.chunkSize = varies ? 0 : chunkSize;
    return table;
}

}  // namespace orvex
