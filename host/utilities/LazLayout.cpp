#include "host/utilities/LazLayout.h"

#include <algorithm>
#include <array>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

MappedFile OpenForReading(const std::wstring& path, std::uint64_t& size) {
    MappedFile file;
    SystemError error = file.Open(path, true);
    if (error == 0) {
        error = file.Size(size);
    }
    if (error != 0) {
        throw LDataError(FormatText(Text(40300_lsid), {path, SystemErrorText(error)}));
    }
    return file;
}

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
        throw LDataError(FormatText(Text(40302_lsid), {path}));
    }
}

bool IsWaveform(const std::string& userId, std::uint16_t recordId) {
    return userId == las::kSpecUserId && recordId == las::kWaveformRecordId;
}

}  // namespace

LazLayout ReadLazLayout(const std::wstring& path) {
    LazLayout layout;
    const MappedFile file = OpenForReading(path, layout.fileSize);
    std::array<std::byte, las::kHeaderSize14> buffer{};
    std::size_t read = 0;
    if (const SystemError error = file.ReadAt(0, buffer, read); error != 0) {
        throw LDataError(FormatText(Text(40300_lsid), {path, SystemErrorText(error)}));
    }
    const ByteReader header(std::span<const std::byte>(buffer).first(read));
    if (read < las::kLegacyHeaderSize ||
        header.FixedText(las::at::kSignature, las::kSignature.size()) != las::kSignature) {
        throw LDataError(FormatText(Text(40301_lsid), {path}));
    }
    layout.versionMinor = header.Read<std::uint8_t>(las::at::kVersionMinor);
    layout.headerSize = header.Read<std::uint16_t>(las::at::kHeaderSize);
    layout.offsetToPoints = header.Read<std::uint32_t>(las::at::kOffsetToPoints);
    layout.recordCount = header.Read<std::uint32_t>(las::at::kVlrCount);
    RequirePlausible(layout, path);
    layout.recordLength = header.Read<std::uint16_t>(las::at::kPointRecordLength);
    layout.hasPoints = header.Read<std::uint32_t>(las::at::kLegacyPointCount) != 0 ||
                       (layout.versionMinor >= 4 && header.Read<std::uint64_t>(las::at::kPointCount) != 0);
    if (!IsKnownPoint(header.Read<std::uint8_t>(las::at::kPointFormat), layout.recordLength)) {
        throw LDataError(FormatText(Text(40302_lsid), {path}));
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

}  // namespace orvex
