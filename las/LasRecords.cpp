#include "las/LasRecords.h"

#include <algorithm>
#include <utility>

#include "support/ByteReader.h"

namespace orvex {
namespace {

// Both record headers begin alike; the length field differs in width.
constexpr std::uint64_t kReservedAt = 0;
constexpr std::uint64_t kUserIdAt = 2;
constexpr std::uint64_t kUserIdLength = 16;
constexpr std::uint64_t kRecordIdAt = 18;
constexpr std::uint64_t kLengthAt = 20;
constexpr std::uint64_t kVlrDescriptionAt = 22;
constexpr std::uint64_t kEvlrDescriptionAt = 28;
constexpr std::uint64_t kDescriptionLength = 32;

}  // namespace

VlrView::VlrView(std::span<const std::byte> record, std::uint64_t fileOffset)
    : record_(record), fileOffset_(fileOffset) {
    record_ = ByteReader(record).Bytes(0, kHeaderSize + RecordLength());
}

std::uint16_t VlrView::Reserved() const {
    return ByteReader(record_).Read<std::uint16_t>(kReservedAt);
}

std::string VlrView::UserId() const {
    return ByteReader(record_).FixedText(kUserIdAt, kUserIdLength);
}

std::uint16_t VlrView::RecordId() const {
    return ByteReader(record_).Read<std::uint16_t>(kRecordIdAt);
}

std::uint64_t VlrView::RecordLength() const {
    return ByteReader(record_).Read<std::uint16_t>(kLengthAt);
}

std::string VlrView::Description() const {
    return ByteReader(record_).FixedText(kVlrDescriptionAt, kDescriptionLength);
}

bool VlrView::Is(std::string_view userId, std::uint16_t recordId) const {
    return RecordId() == recordId && UserId() == userId;
}

EvlrEntry::EvlrEntry(const HeaderBytes& header, std::uint64_t fileOffset, bool isTruncated)
    : header_(header), isTruncated_(isTruncated), fileOffset_(fileOffset) {}

void EvlrEntry::SetData(std::vector<std::byte> copy) {
    copy_ = std::move(copy);
    hasData_ = true;
}

void EvlrEntry::SetData(MappedView view) {
    view_ = std::move(view);
    hasData_ = true;
}

std::uint16_t EvlrEntry::Reserved() const {
    return ByteReader(header_).Read<std::uint16_t>(kReservedAt);
}

std::string EvlrEntry::UserId() const {
    return ByteReader(header_).FixedText(kUserIdAt, kUserIdLength);
}

std::uint16_t EvlrEntry::RecordId() const {
    return ByteReader(header_).Read<std::uint16_t>(kRecordIdAt);
}

std::uint64_t EvlrEntry::RecordLength() const {
    return ByteReader(header_).Read<std::uint64_t>(kLengthAt);
}

std::string EvlrEntry::Description() const {
    return ByteReader(header_).FixedText(kEvlrDescriptionAt, kDescriptionLength);
}

std::span<const std::byte> EvlrEntry::Data() const {
    return view_ ? std::span<const std::byte>(view_.Bytes()) : std::span<const std::byte>(copy_);
}

bool EvlrEntry::Is(std::string_view userId, std::uint16_t recordId) const {
    return RecordId() == recordId && UserId() == userId;
}

std::vector<VlrView> WalkVlrs(std::span<const std::byte> area, const LasHeader& header) {
    std::vector<VlrView> records;
    if (header.HeaderSize() < LasHeader::kLegacySize) {
        return records;
    }
    const std::size_t most = std::min<std::size_t>(header.VlrCount(), kMostRecords);
    const ByteReader reader(area);
    std::uint64_t start = header.HeaderSize();
    while (records.size() < most && reader.Contains(start, VlrView::kHeaderSize)) {
        records.emplace_back(reader.Bytes(start, area.size()), start);
        start += VlrView::kHeaderSize + records.back().RecordLength();
    }
    records.shrink_to_fit();
    return records;
}

}  // namespace orvex
