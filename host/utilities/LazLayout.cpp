#include "host/utilities/LazLayout.h"

#include <array>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kMinHeaderSize = 227;
constexpr std::uint64_t kHeaderSize13 = 235;
constexpr std::uint64_t kHeaderSize14 = 375;
constexpr std::uint64_t kRecordHeaderSize = 54;
constexpr std::uint64_t kExtendedHeaderSize = 60;
// Bytes of a point of the formats 0 to 10; a record may have more.
constexpr std::array<std::uint16_t, 11> kPointSizes = {20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};
constexpr std::uint16_t kInternalWaveformBit = 2;
constexpr std::uint16_t kWaveformRecordId = 65535;

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
    // The two high bits say that the points are compressed.
    const std::size_t format = formatByte & 63;
    return format < kPointSizes.size() && recordLength >= kPointSizes[format];
}

void RequirePlausible(const LazLayout& layout, const std::wstring& path) {
    const bool headerFits = layout.headerSize >= kMinHeaderSize &&
                            layout.offsetToPoints >= layout.headerSize &&
                            layout.offsetToPoints <= layout.fileSize;
    // A header of the version's full size is what the codec reads, whatever size is announced.
    const std::uint64_t needed = layout.versionMinor >= 4   ? kHeaderSize14
                                 : layout.versionMinor == 3 ? kHeaderSize13
                                                            : kMinHeaderSize;
    if (!headerFits || layout.headerSize < needed ||
        layout.recordCount > (layout.offsetToPoints - layout.headerSize) / kRecordHeaderSize) {
        throw LDataError(FormatText(Text(40302_lsid), {path}));
    }
}

bool IsWaveform(const std::string& userId, std::uint16_t recordId) {
    return userId == "LASF_Spec" && recordId == kWaveformRecordId;
}

}  // namespace

LazLayout ReadLazLayout(const std::wstring& path) {
    LazLayout layout;
    const MappedFile file = OpenForReading(path, layout.fileSize);
    std::array<std::byte, kHeaderSize14> buffer{};
    std::size_t read = 0;
    if (const SystemError error = file.ReadAt(0, buffer, read); error != 0) {
        throw LDataError(FormatText(Text(40300_lsid), {path, SystemErrorText(error)}));
    }
    const ByteReader header(std::span<const std::byte>(buffer).first(read));
    if (read < kMinHeaderSize || header.FixedText(0, 4) != "LASF") {
        throw LDataError(FormatText(Text(40301_lsid), {path}));
    }
    layout.versionMinor = header.Read<std::uint8_t>(25);
    layout.headerSize = header.Read<std::uint16_t>(94);
    layout.offsetToPoints = header.Read<std::uint32_t>(96);
    layout.recordCount = header.Read<std::uint32_t>(100);
    RequirePlausible(layout, path);
    layout.recordLength = header.Read<std::uint16_t>(105);
    layout.hasPoints = header.Read<std::uint32_t>(107) != 0 ||
                       (layout.versionMinor >= 4 && header.Read<std::uint64_t>(247) != 0);
    if (!IsKnownPoint(header.Read<std::uint8_t>(104), layout.recordLength)) {
        throw LDataError(FormatText(Text(40302_lsid), {path}));
    }
    const bool internalWaveform = (header.Read<std::uint16_t>(6) & kInternalWaveformBit) != 0;
    if (layout.versionMinor >= 3 && internalWaveform) {
        layout.waveformStart = header.Read<std::uint64_t>(227);
    }
    if (layout.versionMinor >= 4) {
        layout.extendedStart = header.Read<std::uint64_t>(235);
        layout.extendedRecordCount = header.Read<std::uint32_t>(243);
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
    std::array<std::byte, kExtendedHeaderSize> buffer{};
    for (; left > 0 && offset <= size && size - offset >= kExtendedHeaderSize; --left) {
        std::size_t read = 0;
        if (file.ReadAt(offset, buffer, read) != 0 || read < buffer.size()) {
            break;
        }
        const ByteReader header(buffer);
        const std::string userId = header.FixedText(2, 16);
        const auto length = header.Read<std::uint64_t>(20);
        if (length > size - offset - kExtendedHeaderSize) {
            break;
        }
        if (userId != "copc") {
            records.push_back(
                {offset, kExtendedHeaderSize + length,
                 IsWaveform(userId, header.Read<std::uint16_t>(18)) || offset == layout.waveformStart});
        }
        offset += kExtendedHeaderSize + length;
    }
    return records;
}

}  // namespace orvex
