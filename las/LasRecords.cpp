#include "las/LasRecords.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/SourceWindow.h"
#include "support/Text.h"
#include "support/TextCache.h"

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

constexpr const wchar_t* kHeaderReadFailed = L"Failed to read EVLR header section of LAS file into memory.";
constexpr const wchar_t* kDataReadFailed =
    L"Failed to read EVLR record data section of LAS file into memory.";

class EvlrReader {
  public:
    EvlrReader(const ByteSource& file, bool truncates) : file_(file), truncates_(truncates) {}

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
            std::optional<EvlrEntry> entry = ReadEntry(position);
            if (!entry) {
                break;
            }
            position = NextPosition(*entry, position + EvlrEntry::kHeaderSize);
            entries.push_back(*std::move(entry));
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

    /// False if the source gives no more.
    bool ReadWhole(std::uint64_t position, std::span<std::byte> buffer, const wchar_t* failure) const {
        std::size_t read = 0;
        const SystemError error = file_.ReadAt(position, buffer, read);
        if (error != ByteSource::kNoMoreReads && (error != 0 || read < buffer.size())) {
            throw LDataError(failure);
        }
        return error == 0;
    }

    /// The record at a position with the data that is kept; nullopt if the source gives no more.
    std::optional<EvlrEntry> ReadEntry(std::uint64_t position) {
        EvlrEntry::HeaderBytes header{};
        if (position > fileSize_) {
            throw LDataError(kHeaderReadFailed);
        }
        if (!ReadWhole(position, header, kHeaderReadFailed)) {
            return std::nullopt;
        }
        const auto length = ByteReader(header).Read<std::uint64_t>(at::kLength);
        EvlrEntry entry(header, position, length > BytesFrom(position + header.size()));
        const std::string userId = entry.UserId();
        const bool isKept = userId == las::kProjectionUserId || userId == kOwnUserId;
        return !isKept || ReadData(entry, position + header.size()) ? std::optional(std::move(entry))
                                                                    : std::nullopt;
    }

    /// False if the source gives no more.
    bool ReadData(EvlrEntry& entry, std::uint64_t position) {
        if (entry.IsTruncated() && !truncates_) {
            throw LDataError(kDataReadFailed);
        }
        const std::uint64_t length = std::min(entry.RecordLength(), BytesFrom(position));
        if (length > kMostRecordData - copied_) {
            return true;
        }
        std::vector<std::byte> data(static_cast<std::size_t>(length));
        if (!ReadWhole(position, data, kDataReadFailed)) {
            return false;
        }
        copied_ += length;
        entry.SetData(std::move(data));
        return true;
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

    const ByteSource& file_;
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
    explicit VlrReader(SourceWindow& file) : file_(file) {}

    SystemError Read(const LasHeader& header, VlrList& list) {
        end_ = std::min<std::uint64_t>(file_.Size(), header.OffsetToPoints());
        WalkVlrs(header, end_, [&](std::uint64_t start) { return Keep(start); });
        // The views are made once the bytes stay where they are.
        kept_.shrink_to_fit();
        list.bytes = std::move(kept_);
        list.records.reserve(places_.size());
        for (const Place& place : places_) {
            list.records.emplace_back(
                std::span<const std::byte>(list.bytes).subspan(place.keptAt, place.length), place.fileOffset,
                place.isTruncated);
        }
        return file_.Error();
    }

  private:
    struct Place {
        std::size_t keptAt;
        std::size_t length;
        std::uint64_t fileOffset;
        bool isTruncated;
    };

    /// The length of the data of the record at `start`; nullopt if the file ends before.
    std::optional<std::uint64_t> Keep(std::uint64_t start) {
        const std::span<const std::byte> header = file_.Bytes(start, VlrView::kHeaderSize);
        if (header.size() < VlrView::kHeaderSize) {
            return std::nullopt;
        }
        const std::uint64_t length = DataLength(header);
        const std::uint64_t present = std::min(length, end_ - start - VlrView::kHeaderSize);
        const bool isKept = IsOfUse(VlrView(header, start, true)) && present <= kMostRecordData - data_;
        const std::span<const std::byte> record =
            isKept ? file_.Bytes(start, VlrView::kHeaderSize + present) : header;
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

    SourceWindow& file_;
    std::uint64_t end_ = 0;  // of the VLRs
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

SystemError ReadVlrs(const ByteSource& file, const LasHeader& header, VlrList& list) {
    std::uint64_t size = 0;
    if (const SystemError error = file.Size(size)) {
        return error;
    }
    SourceWindow window(file, size);
    return ReadVlrs(window, header, list);
}

SystemError ReadVlrs(SourceWindow& file, const LasHeader& header, VlrList& list) {
    return VlrReader(file).Read(header, list);
}

std::vector<EvlrEntry> ReadEvlrs(const ByteSource& file, std::uint64_t start, std::uint32_t count,
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

namespace {

/// Programs write this record under user ids of their own as well, so only its record id counts.
void DecodeExtraBytes(LasVlrs& vlrs) {
    for (const VlrView& vlr : vlrs.list.records) {
        if (vlr.RecordId() != las::kExtraBytesRecordId) {
            continue;
        }
        if (vlr.UserId() == las::kSpecUserId &&
            vlr.Description().substr(0, 31) == "Xtra:range/incidentVec/photoNdx") {
            vlrs.hasRangeIncidencePhotoIndex = true;
        }
        vlrs.extraBytes.Add(vlr.Data());
    }
}

}  // namespace

SystemError ReadVlrs(SourceWindow& file, const LasHeader& header, LasVlrsPtr& vlrs) {
    auto own = std::make_shared<LasVlrs>();
    const SystemError error = ReadVlrs(file, header, own->list);
    if (error == 0 || error == ByteSource::kNoMoreReads) {
        DecodeExtraBytes(*own);
    }
    vlrs = std::move(own);
    return error;
}

namespace {

constexpr std::size_t kVlrsKept = 256;
constexpr std::size_t kVlrBytesKept = std::size_t{4} << 20U;
constexpr std::uint64_t kMostShared = std::uint64_t{64} << 10U;

/// All that ReadVlrs depends on: three fields of the header, and the bytes between header and points. Empty
/// if there are none, too many, or fewer than the header says.
std::string KeyOf(SourceWindow& file, const LasHeader& header) {
    const std::uint64_t start = header.HeaderSize();
    const std::uint64_t end = header.OffsetToPoints();
    if (start < las::kLegacyHeaderSize || start >= end || end - start > kMostShared || end > file.Size()) {
        return {};
    }
    const std::span<const std::byte> area = file.Bytes(start, end - start);
    if (area.size() < end - start) {
        return {};
    }
    const std::array<std::uint32_t, 3> fields{header.HeaderSize(), header.OffsetToPoints(),
                                              header.VlrCount()};
    std::string key;
    key.reserve(sizeof(fields) + area.size());
    key.append(reinterpret_cast<const char*>(fields.data()), sizeof(fields));
    key.append(reinterpret_cast<const char*>(area.data()), area.size());
    return key;
}

}  // namespace

SystemError ReadSharedVlrs(SourceWindow& file, const LasHeader& header, LasVlrsPtr& vlrs) {
    // The tiles of a folder mostly have the same VLRs, which are the most of what a row would keep. Never
    // destroyed: a worker may still ask while the process ends.
    static auto* const cache = new TextCache<LasVlrsPtr>(kVlrsKept, kVlrBytesKept);
    const std::string key = KeyOf(file, header);
    if (key.empty()) {
        return ReadVlrs(file, header, vlrs);
    }
    vlrs = cache->Get(key, [&] {
        LasVlrsPtr read;
        ReadVlrs(file, header, read);  // from the window: no error
        return read;
    });
    return 0;
}

}  // namespace orvex
