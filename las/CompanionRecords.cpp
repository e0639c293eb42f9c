#include "las/CompanionRecords.h"

#include <algorithm>
#include <cstring>

#include "support/ByteReader.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace at = las::record_at;

constexpr std::uint16_t kCompanionEvlrId = 157;
constexpr std::uint16_t kThinnedMark = 0xEEFF;
constexpr std::uint32_t kIndexValue = 4;

// Offsets in the program's own records.
constexpr std::size_t kIndexValueAt = las::kVlrHeaderSize + 45;
constexpr std::size_t kValueAt = las::kVlrHeaderSize;
constexpr std::size_t kCountAt = las::kVlrHeaderSize + 4;
constexpr std::size_t kEntrySizeAt = las::kVlrHeaderSize + 8;
constexpr std::size_t kMarkAt = las::kVlrHeaderSize + 10;

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
    Put<std::uint16_t>(record, at::kReserved, versionCode < las::kLas11 ? las::kVlrSignature10 : 0);
    PutText(record, at::kUserId, kCompanionUserId);
    Put(record, at::kRecordId, recordId);
    Put(record, at::kLength, static_cast<std::uint16_t>(record.size() - las::kVlrHeaderSize));
    PutText(record, at::kVlrDescription, description);
}

std::uint64_t ThinnedLength(const ThinnedHead& head) {
    return kThinnedHeadSize + std::uint64_t{head.count} * head.entrySize;
}

}  // namespace

CompanionStatus FindCompanionStatus(const std::wstring& fileName, std::span<const VlrView> vlrs,
                                    std::span<const EvlrEntry> evlrs) {
    return FileExists(WithExtension(fileName, L".qvr")) ? CompanionStatus::QvrFile
                                                        : FindCompanionRecord(vlrs, evlrs);
}

CompanionStatus FindCompanionRecord(std::span<const VlrView> vlrs, std::span<const EvlrEntry> evlrs) {
    if (std::ranges::any_of(evlrs,
                            [](const EvlrEntry& evlr) { return evlr.RecordId() == kCompanionEvlrId; })) {
        return CompanionStatus::ExtendedRecord;
    }
    const auto isIndex = [](const VlrView& vlr) { return vlr.Is(kCompanionUserId, kIndexRecordId); };
    return std::ranges::any_of(vlrs, isIndex) ? CompanionStatus::IndexRecord : CompanionStatus::None;
}

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
    if (length > las::kMostVlrData) {
        return false;
    }
    Put(record, kValueAt, head.value);
    Put(record, kCountAt, head.count);
    Put(record, kEntrySizeAt, head.entrySize);
    Put(record, at::kLength, static_cast<std::uint16_t>(length));
    return true;
}

std::optional<ThinnedHead> CheckThinnedVlr(std::span<const std::byte> buffer, std::uint64_t offset) {
    if (!ByteReader(buffer).Contains(offset, las::kVlrHeaderSize + kThinnedHeadSize)) {
        return std::nullopt;
    }
    const ByteReader record(buffer.subspan(offset));
    const ThinnedHead head{record.Read<std::uint32_t>(kValueAt), record.Read<std::uint32_t>(kCountAt),
                           record.Read<std::uint16_t>(kEntrySizeAt)};
    if (record.Read<std::uint16_t>(at::kReserved) != las::kVlrSignature10 ||
        record.Read<std::uint16_t>(at::kLength) != ThinnedLength(head)) {
        return std::nullopt;
    }
    return head;
}

std::uint32_t ThinnedEntriesPerVlr(std::uint16_t entrySize) {
    return entrySize == 0 ? 0
                          : static_cast<std::uint32_t>((las::kMostVlrData - kThinnedHeadSize) / entrySize);
}

std::uint64_t ThinnedVlrCount(std::uint32_t entries, std::uint16_t entrySize) {
    const std::uint64_t perVlr = ThinnedEntriesPerVlr(entrySize);
    return perVlr == 0 ? 0 : (entries + perVlr - 1) / perVlr;
}

std::uint64_t ThinnedBytesNeeded(std::uint32_t entries, std::uint16_t entrySize) {
    return ThinnedVlrCount(entries, entrySize) * (las::kVlrHeaderSize + kThinnedHeadSize) +
           std::uint64_t{entries} * entrySize;
}

}  // namespace orvex
