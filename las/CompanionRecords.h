#pragma once
// The companion index of a LAS file: its kind, and the two VLRs written for it, the index and the thinned
// points.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "las/LasRecords.h"

namespace orvex {

inline constexpr std::string_view kCompanionUserId = "BrightwellMarsh";
inline constexpr std::uint16_t kIndexRecordId = 64;
inline constexpr std::uint16_t kThinnedRecordId = 65;

/// Kind of companion index; the host gets the number.
enum class CompanionStatus {
    None = 0,
    QvrFile = 2,         ///< a ".qvr" file of the same base name lies beside the file
    IndexRecord = 3,     ///< the file holds the index VLR
    ExtendedRecord = 6,  ///< the file holds an EVLR with record id 157
};

/// Companion index among a file's records. An EVLR takes precedence over a VLR.
CompanionStatus FindCompanionRecord(std::span<const VlrView> vlrs, std::span<const EvlrEntry> evlrs);
/// Companion index of a file with these records. A ".qvr" file takes precedence over them.
CompanionStatus FindCompanionStatus(const std::wstring& fileName, std::span<const VlrView> vlrs,
                                    std::span<const EvlrEntry> evlrs);

inline constexpr std::size_t kIndexPayloadSize = 81;
inline constexpr std::size_t kThinnedHeadSize = 12;
/// Default size of one thinned entry in bytes.
inline constexpr std::uint16_t kThinnedEntrySize = 28;

using IndexVlr = std::array<std::byte, las::kVlrHeaderSize + kIndexPayloadSize>;
using ThinnedVlrHead = std::array<std::byte, las::kVlrHeaderSize + kThinnedHeadSize>;

/// Both records are written for LAS 1.2.
inline constexpr int kWrittenVersionCode = las::kLas12;

/// Index VLR whose payload the index writer completes. The reserved field is 0xAABB for LAS 1.0, else 0.
IndexVlr MakeIndexVlr(int versionCode = kWrittenVersionCode);

/// Thinned VLR without entries; its entries follow it in the file.
ThinnedVlrHead MakeThinnedVlr(int versionCode = kWrittenVersionCode);

/// Start of the payload of a thinned VLR.
struct ThinnedHead {
    std::uint32_t value = 0;  ///< set by the companion builder
    std::uint32_t count = 0;  ///< entries that follow
    std::uint16_t entrySize = 0;
};

/// Sets a record's head and its record length. Returns false and changes nothing if the entries do not fit
/// into one VLR.
bool FillThinnedVlr(ThinnedVlrHead& record, const ThinnedHead& head);

/// Head of the thinned VLR at an offset of a buffer; nullopt unless the reserved field is 0xAABB (written
/// records have 0 there and must be marked before they are read back), the head lies inside the buffer, and
/// the record length matches the entries.
std::optional<ThinnedHead> CheckThinnedVlr(std::span<const std::byte> buffer, std::uint64_t offset);

/// Entries of a size that fit into one VLR; 0 for size 0.
std::uint32_t ThinnedEntriesPerVlr(std::uint16_t entrySize);
/// VLRs needed for a number of entries; 0 if not even one entry fits.
std::uint64_t ThinnedVlrCount(std::uint32_t entries, std::uint16_t entrySize);
/// Bytes of those VLRs including their entries.
std::uint64_t ThinnedBytesNeeded(std::uint32_t entries, std::uint16_t entrySize);

}  // namespace orvex
