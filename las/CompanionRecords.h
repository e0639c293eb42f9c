#pragma once
// The two VLRs that the program writes: the index and the list of thinned points.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "las/LasRecords.h"

namespace orvex {

inline constexpr std::string_view kCompanionUserId = "BrightwellMarsh";
inline constexpr std::uint16_t kIndexRecordId = 64;
inline constexpr std::uint16_t kThinnedRecordId = 65;

inline constexpr std::size_t kIndexPayloadSize = 81;
inline constexpr std::size_t kThinnedHeadSize = 12;
/// Size of one thinned entry where nothing else is asked for, in bytes.
inline constexpr std::uint16_t kThinnedEntrySize = 28;

using IndexVlr = std::array<std::byte, VlrView::kHeaderSize + kIndexPayloadSize>;
using ThinnedVlrHead = std::array<std::byte, VlrView::kHeaderSize + kThinnedHeadSize>;

/// Both records are written for LAS 1.2.
inline constexpr int kWrittenVersionCode = 3;

/// An index VLR whose payload the index writer completes. The reserved field is 0xAABB below version code 1,
/// else 0.
IndexVlr MakeIndexVlr(int versionCode = kWrittenVersionCode);

/// A thinned VLR without entries; its entries follow it in the file.
ThinnedVlrHead MakeThinnedVlr(int versionCode = kWrittenVersionCode);

/// What the payload of a thinned VLR begins with.
struct ThinnedHead {
    std::uint32_t value = 0;  ///< set by the companion builder
    std::uint32_t count = 0;  ///< entries that follow
    std::uint16_t entrySize = 0;
};

/// Sets a record's head and its record length; false, changing nothing, when the entries do not fit into one
/// VLR.
bool FillThinnedVlr(ThinnedVlrHead& record, const ThinnedHead& head);

/// The head of the thinned VLR at an offset of a buffer. None unless its reserved field is 0xAABB (which the
/// written records do not have: a record has to be marked before it is read back), its head lies inside the
/// buffer, and its record length is that of its entries.
std::optional<ThinnedHead> CheckThinnedVlr(std::span<const std::byte> buffer, std::uint64_t offset);

/// How many entries of a size fit into one VLR; 0 for size 0.
std::uint32_t ThinnedEntriesPerVlr(std::uint16_t entrySize);
/// How many VLRs a number of entries needs; 0 when the entries fit into none.
std::uint64_t ThinnedVlrCount(std::uint32_t entries, std::uint16_t entrySize);
/// How many bytes those VLRs take, with their entries.
std::uint64_t ThinnedBytesNeeded(std::uint32_t entries, std::uint16_t entrySize);

}  // namespace orvex
