#include "las/CompanionRecords.h"

#include <cstring>

#include "support/ByteReader.h"

namespace orvex {
namespace {

constexpr std::uint16_t kMarkedReserved = 0xAABB;
constexpr std::uint16_t kThinnedMark = 0xEEFF;
constexpr std::uint32_t kIndexValue = 4;
constexpr std::uint64_t kLargestRecord = 65535;

// Offsets in a VLR header.
constexpr std::size_t kUserIdAt = 2;
constexpr std::size_t kRecordIdAt = 18;
constexpr std::size_t kLengthAt = 20;
constexpr std::size_t kDescriptionAt = 22;
// Offsets in a record of the program's own.
constexpr std::size_t kIndexValueAt = VlrView::kHeaderSize + 45;
constexpr std::size_t kValueAt = VlrView::kHeaderSize;
constexpr std::size_t kCountAt = VlrView::kHeaderSize + 4;
constexpr std::size_t kEntrySizeAt = VlrView::kHeaderSize + 8;
constexpr std::size_t kMarkAt = VlrView::kHeaderSize + 10;

template <typename T>
void Put(std::span<std::byte> bytes, std::size_t offset, T value) {
    std::memcpy(bytes.subspan(offset, sizeof(T)).data(), &value, sizeof(T));
}

void PutText(std::span<std::byte> bytes, std::size_t offset, std::string_view text) {
    std::memcpy(bytes.subspan(offset, text.size()).data(), text.data(), text.size());
}

// The rest of the record is zeros.
void PutHeader(std::span<std::byte> record, int versionCode, std::uint16_t recordId,
               std::string_view description) {
    Put<std::uint16_t>(record, 0, versionCode < 1 ? kMarkedReserved : 0);
    PutText(record, kUserIdAt, kCompanionUserId);
    Put(record, kRecordIdAt, recordId);
    Put(record, kLengthAt, static_cast<std::uint16_t>(record.size() - VlrView::kHeaderSize));
    PutText(record, kDescriptionAt, description);
}

std::uint64_t ThinnedLength(const ThinnedHead& head) {
    return kThinnedHeadSize + std::uint64_t{head.count} * head.entrySize;
}

}  // namespace

IndexVlr MakeIndexVlr(int versionCode) {
    IndexVlr record{};
    PutHeader(record, versionCode, kIndexRecordId, "Brightwell Marsh Software Index");
    Put(record, kIndexValueAt, kIndexValue);
    return record;
}

ThinnedVlrHead MakeThinnedVlr(int versionCode) {
    ThinnedVlrHead record{};
    PutHeader(record, versionCode, kThinnedRecordId, "BrightwellMarshSoftware Thinned");
    Put(record, kEntrySizeAt, kThinnedEntrySize);
    Put(record, kMarkAt, kThinnedMark);
    return record;
}

bool FillThinnedVlr(ThinnedVlrHead& record, const ThinnedHead& head) {
    const std::uint64_t length = ThinnedLength(head);
    if (length > kLargestRecord) {
        return false;
    }
    Put(record, kValueAt, head.value);
    Put(record, kCountAt, head.count);
    Put(record, kEntrySizeAt, head.entrySize);
    Put(record, kLengthAt, static_cast<std::uint16_t>(length));
    return true;
}

std::optional<ThinnedHead> CheckThinnedVlr(std::span<const std::byte> buffer, std::uint64_t offset) {
    if (!ByteReader(buffer).Contains(offset, VlrView::kHeaderSize + kThinnedHeadSize)) {
        return std::nullopt;
    }
    const ByteReader record(buffer.subspan(offset));
    const ThinnedHead head{record.Read<std::uint32_t>(kValueAt), record.Read<std::uint32_t>(kCountAt),
                           record.Read<std::uint16_t>(kEntrySizeAt)};
    if (record.Read<std::uint16_t>(0) != kMarkedReserved ||
        record.Read<std::uint16_t>(kLengthAt) != ThinnedLength(head)) {
        return std::nullopt;
    }
    return head;
}

std::uint32_t ThinnedEntriesPerVlr(std::uint16_t entrySize) {
    return entrySize == 0 ? 0 : static_cast<std::uint32_t>((kLargestRecord - kThinnedHeadSize) / entrySize);
}

std::uint64_t ThinnedVlrCount(std::uint32_t entries, std::uint16_t entrySize) {
    const std::uint64_t perVlr = ThinnedEntriesPerVlr(entrySize);
    return perVlr == 0 ? 0 : (entries + perVlr - 1) / perVlr;
}

std::uint64_t ThinnedBytesNeeded(std::uint32_t entries, std::uint16_t entrySize) {
    return ThinnedVlrCount(entries, entrySize) * (VlrView::kHeaderSize + kThinnedHeadSize) +
           std::uint64_t{entries} * entrySize;
}

}  // namespace orvex
