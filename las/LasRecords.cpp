#include "las/LasRecords.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace at = las::record_at;

constexpr std::string_view kOwnUserId = "Kst";
constexpr std::size_t kSeekMessageLimit = 1024;
// Positions in a file are signed 64-bit numbers.
constexpr std::uint64_t kLastPosition = std::numeric_limits<std::int64_t>::max();

// Offsets in an extra bytes descriptor.
constexpr std::uint64_t kDataTypeAt = 2;
constexpr std::uint64_t kOptionsAt = 3;
constexpr std::uint64_t kNameAt = 4;
constexpr std::uint64_t kNameLength = 32;
constexpr std::size_t kDataTypeMessageLimit = 255;
// By data type; the size of type 0 is in its options.
constexpr std::array<std::uint8_t, 11> kDataTypeSizes{0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8};

[[noreturn]] void ThrowSystemError() {
    throw LDataError(L"Unable to read EVLRs. System Error");
}

[[noreturn]] void ThrowDataError() {
    throw LDataError(L"Failed to read EVLR record data section of LAS file into memory.");
}

class EvlrReader {
  public:
    EvlrReader(const MappedFile& file, bool truncates) : file_(file), truncates_(truncates) {}

    std::vector<EvlrEntry> Read(std::uint64_t start, std::uint32_t count) {
        if (file_.Size(fileSize_) != 0) {
            ThrowSystemError();
        }
        RequirePosition(start);
        const std::uint64_t room = start < fileSize_ ? (fileSize_ - start) / EvlrEntry::kHeaderSize : 0;
        const std::uint64_t most = std::min<std::uint64_t>(count, kMostRecords);
        std::vector<EvlrEntry> entries;
        entries.reserve(std::min(most, room));
        std::uint64_t position = start;
        while (entries.size() < most) {
            EvlrEntry& entry = entries.emplace_back(ReadHeader(position));
            const std::uint64_t dataPosition = position + EvlrEntry::kHeaderSize;
            const std::string userId = entry.UserId();
            if (userId == las::kProjectionUserId || userId == kOwnUserId) {
                ReadData(entry, dataPosition);
            }
            position = NextPosition(entry, dataPosition);
        }
        return entries;
    }

  private:
    void RequirePosition(std::uint64_t start) const {
        if (start > kLastPosition) {
            throw LDataError(FormatText(
                L"Moving file pointer to the eVlr offset failed. Unable to populate the evlr list. "
                L"evlrOffset (%I64d) | filesize (%I64d).",
                {static_cast<std::int64_t>(start), static_cast<std::int64_t>(fileSize_)}, kSeekMessageLimit));
        }
    }

    std::uint64_t BytesFrom(std::uint64_t position) const {
        return fileSize_ - std::min(fileSize_, position);
    }

    EvlrEntry ReadHeader(std::uint64_t position) const {
        EvlrEntry::HeaderBytes header{};
        std::size_t read = 0;
        if (position > fileSize_ || file_.ReadAt(position, header, read) != 0 || read < header.size()) {
            throw LDataError(L"Failed to read EVLR header section of LAS file into memory.");
        }
        const auto length = ByteReader(header).Read<std::uint64_t>(at::kLength);
        return {header, position, length > BytesFrom(position + header.size())};
    }

    void ReadData(EvlrEntry& entry, std::uint64_t position) {
        if (entry.IsTruncated() && !truncates_) {
            ThrowDataError();
        }
        const std::uint64_t length = std::min(entry.RecordLength(), BytesFrom(position));
        if (length > kMostRecordData - copied_) {
            return;
        }
        std::vector<std::byte> data(static_cast<std::size_t>(length));
        std::size_t read = 0;
        if (file_.ReadAt(position, data, read) != 0 || read < length) {
            ThrowDataError();
        }
        copied_ += length;
        entry.SetData(std::move(data));
    }

    static std::uint64_t NextPosition(const EvlrEntry& entry, std::uint64_t dataPosition) {
        if (entry.RecordLength() <= kLastPosition - dataPosition) {
            return dataPosition + entry.RecordLength();
        }
        if (!entry.HasData()) {
            throw LDataError(L"Setting file pointer failed when skipping record data for evlr.");
        }
        return kLastPosition;
    }

    const MappedFile& file_;
    bool truncates_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t copied_ = 0;  // bytes of data in private memory
};

/// Calls `visit` with the offset of each VLR; it returns the stated length of the record's data. Ends early
/// where it returns nullopt.
template <typename Visit>
void WalkVlrs(const LasHeader& header, std::uint64_t end, Visit visit) {
    if (header.HeaderSize() < las::kLegacyHeaderSize) {
        return;
    }
    std::uint64_t start = header.HeaderSize();
    for (std::size_t left = std::min<std::size_t>(header.VlrCount(), kMostRecords);
         left > 0 && start <= end && end - start >= VlrView::kHeaderSize; --left) {
        const std::optional<std::uint64_t> length = visit(start);
        if (!length) {
            return;
        }
        start += VlrView::kHeaderSize + *length;
    }
}

std::uint64_t DataLength(std::span<const std::byte> vlr) {
    return ByteReader(vlr).Read<std::uint16_t>(at::kLength);
}

/// Reads VLRs one by one through a window, and keeps of each what a list needs.
class VlrReader {
  public:
    explicit VlrReader(const MappedFile& file) : file_(file) {}

    SystemError Read(const LasHeader& header, VlrList& list) {
        std::uint64_t end = 0;
        if (const SystemError error = file_.Size(end)) {
            return error;
        }
        end = std::min<std::uint64_t>(end, header.OffsetToPoints());
        WalkVlrs(header, end, [&](std::uint64_t start) { return Keep(start, end); });
        // The views are made once the bytes stay where they are.
        kept_.shrink_to_fit();
        list.bytes = std::move(kept_);
        list.records.reserve(places_.size());
        for (const Place& place : places_) {
            list.records.emplace_back(
                std::span<const std::byte>(list.bytes).subspan(place.keptAt, place.length), place.fileOffset,
                place.isTruncated);
        }
        return error_;
    }

  private:
    struct Place {
        std::size_t keptAt;
        std::size_t length;
        std::uint64_t fileOffset;
        bool isTruncated;
    };

    /// The length of the data of the record at `start`; nullopt if the file ends before.
    std::optional<std::uint64_t> Keep(std::uint64_t start, std::uint64_t end) {
        const std::span<const std::byte> header = Window(start, VlrView::kHeaderSize);
        if (header.size() < VlrView::kHeaderSize) {
            return std::nullopt;
        }
        const std::uint64_t length = DataLength(header);
        const std::uint64_t present = std::min(length, end - start - VlrView::kHeaderSize);
        const bool isKept = IsOfUse(VlrView(header, start, true)) && present <= kMostRecordData - data_;
        const std::span<const std::byte> record =
            isKept ? Window(start, VlrView::kHeaderSize + present) : header;
        if (record.size() < VlrView::kHeaderSize) {
            return std::nullopt;
        }
        places_.push_back({kept_.size(), record.size(), start, present < length});
        kept_.insert(kept_.end(), record.begin(), record.end());
        data_ += record.size() - VlrView::kHeaderSize;
        return length;
    }

    static bool IsOfUse(const VlrView& vlr) {
        return vlr.RecordLength() <= kLongestDump || vlr.UserId() == las::kProjectionUserId ||
               vlr.RecordId() == las::kExtraBytesRecordId;
    }

    /// The bytes from an offset; fewer at the end of the file or on an error. Valid until the next call.
    std::span<const std::byte> Window(std::uint64_t offset, std::uint64_t length) {
        if (offset < windowStart_ || offset + length > windowStart_ + window_.size()) {
            constexpr std::uint64_t kWindow = 8192;
            window_.resize(std::max(kWindow, length));
            windowStart_ = offset;
            std::size_t read = 0;
            error_ = file_.ReadAt(offset, window_, read);
            window_.resize(error_ == 0 ? read : 0);
        }
        return ByteReader(window_).Bytes(offset - windowStart_, length);
    }

    const MappedFile& file_;
    SystemError error_ = 0;
    std::uint64_t windowStart_ = 0;
    std::vector<std::byte> window_;
    std::vector<std::byte> kept_;
    std::uint64_t data_ = 0;  // bytes of data in kept_
    std::vector<Place> places_;
};

std::uint8_t SizeOf(std::uint8_t dataType, std::uint8_t options) {
    if (dataType >= kDataTypeSizes.size()) {
        throw LDataError(FormatText(L"GetExtraByteOffsets: '%i' is not a valid extra bytes data_type value.",
                                    {static_cast<int>(dataType)}, kDataTypeMessageLimit));
    }
    return dataType == 0 ? options : kDataTypeSizes[dataType];
}

}  // namespace

VlrView::VlrView(std::span<const std::byte> record, std::uint64_t fileOffset, bool isTruncated)
    : record_(record), fileOffset_(fileOffset), isTruncated_(isTruncated) {
    record_ = ByteReader(record).Bytes(0, kHeaderSize + RecordLength());
}

std::uint16_t VlrView::Reserved() const {
    return ByteReader(record_).Read<std::uint16_t>(at::kReserved);
}

std::string VlrView::UserId() const {
    return ByteReader(record_).FixedText(at::kUserId, las::kUserIdLength);
}

std::uint16_t VlrView::RecordId() const {
    return ByteReader(record_).Read<std::uint16_t>(at::kRecordId);
}

std::uint64_t VlrView::RecordLength() const {
    return ByteReader(record_).Read<std::uint16_t>(at::kLength);
}

std::string VlrView::Description() const {
    return ByteReader(record_).FixedText(at::kVlrDescription, las::kDescriptionLength);
}

bool VlrView::Is(std::string_view userId, std::uint16_t recordId) const {
    return RecordId() == recordId && UserId() == userId;
}

std::uint16_t EvlrEntry::Reserved() const {
    return ByteReader(header_).Read<std::uint16_t>(at::kReserved);
}

std::string EvlrEntry::UserId() const {
    return ByteReader(header_).FixedText(at::kUserId, las::kUserIdLength);
}

std::uint16_t EvlrEntry::RecordId() const {
    return ByteReader(header_).Read<std::uint16_t>(at::kRecordId);
}

std::uint64_t EvlrEntry::RecordLength() const {
    return ByteReader(header_).Read<std::uint64_t>(at::kLength);
}

std::string EvlrEntry::Description() const {
    return ByteReader(header_).FixedText(at::kEvlrDescription, las::kDescriptionLength);
}

std::span<const std::byte> EvlrEntry::Data() const {
    return data_ ? std::span<const std::byte>(*data_) : std::span<const std::byte>();
}

bool EvlrEntry::Is(std::string_view userId, std::uint16_t recordId) const {
    return RecordId() == recordId && UserId() == userId;
}

SystemError ReadVlrs(const MappedFile& file, const LasHeader& header, VlrList& list) {
    return VlrReader(file).Read(header, list);
}

std::vector<EvlrEntry> ReadEvlrs(const MappedFile& file, std::uint64_t start, std::uint32_t count,
                                 bool truncates) {
    if (start == 0 || count == 0) {
        return {};
    }
    try {
        return EvlrReader(file, truncates).Read(start, count);
    } catch (const LDataError&) {
        throw;
    } catch (const std::exception&) {
        ThrowSystemError();
    }
}

void ExtraBytes::Add(std::span<const std::byte> descriptors, std::size_t mostAttributes) {
    const ByteReader reader(descriptors);
    const std::size_t count = std::min(
        {descriptors.size() / kDescriptorSize, mostAttributes, kMostAttributes - attributes_.size()});
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t start = i * kDescriptorSize;
        const auto dataType = reader.Read<std::uint8_t>(start + kDataTypeAt);
        const std::uint8_t size = SizeOf(dataType, reader.Read<std::uint8_t>(start + kOptionsAt));
        attributes_.push_back({FromUtf8(reader.FixedText(start + kNameAt, kNameLength)), offset,
                               pointEnd_ + offset, size, dataType});
        offset += size;
    }
    pointEnd_ += offset;
}

bool ExtraBytes::IsSpread() const {
    return std::ranges::any_of(attributes_, [](const ExtraBytesAttribute& attribute) {
        return attribute.offset != attribute.pointOffset;
    });
}

const ExtraBytesAttribute* ExtraBytes::Find(const std::wstring& name) const {
    const auto found = std::ranges::find(attributes_, name, &ExtraBytesAttribute::name);
    return found == attributes_.end() ? nullptr : &*found;
}

}  // namespace orvex
