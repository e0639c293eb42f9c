#pragma once
// The records of a QVR companion, described in docs/formats/qvr.md: the root box with its octants, the index,
// and the entries of the thinned points. Positions are a point record's stored X, Y, Z ("raw units").
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "las/CompanionRecords.h"

namespace orvex {

/// Halvings of the root box; cells of this depth are not split any further.
inline constexpr unsigned kQvrLevels = 21;
/// Generation of the points that lose even in a cell of depth kQvrLevels; the last one.
inline constexpr std::uint16_t kQvrLastGeneration = 148;
inline constexpr std::uint16_t kQvrVersion = 1;

using QvrPosition = std::array<std::int32_t, 3>;

/// Arithmetic that every point goes through; here, so that it becomes part of the loops.
namespace qvr {

/// Finalizer of the splitmix64 generator: every bit of the result depends on every bit of the argument.
constexpr std::uint64_t Mix(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

/// The lowest 21 bits, two zeros between neighbours.
constexpr std::uint64_t Spread(std::uint64_t value) {
    value = (value | (value << 32U)) & 0x001F00000000FFFFU;
    value = (value | (value << 16U)) & 0x001F0000FF0000FFU;
    value = (value | (value << 8U)) & 0x100F00F00F00F00FU;
    value = (value | (value << 4U)) & 0x10C30C30C30C30C3U;
    return (value | (value << 2U)) & 0x1249249249249249U;
}

constexpr std::uint32_t Distance(std::int32_t from, std::int32_t to) {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

}  // namespace qvr

/// Generation of the points of rank 0 to 6 among those that lose in a cell of depth `level` - 1; level 0 is
/// the one point that wins everywhere.
constexpr std::uint16_t QvrGeneration(unsigned level, unsigned rank) {
    return static_cast<std::uint16_t>(level == 0 ? 0 : 1 + 7 * (level - 1) + rank);
}

/// Axis-parallel box in raw units; the upper bounds are exclusive.
struct QvrRawBox {
    std::array<double, 3> low{};
    std::array<double, 3> high{};
};

/// The cell of depth 0. Each axis has a power of two as its size, so that all halvings are exact.
struct QvrBox {
    QvrPosition minimum{};
    std::array<std::uint8_t, 3> log2Size{};  ///< 0 to 32

    /// The box of points with this extent: from its minimum on, and about a cube after scaling. The Z axis is
    /// compressed where it is in other units than X and Y (metres and degrees).
    static QvrBox Around(const QvrPosition& minimum, const QvrPosition& maximum,
                         const std::array<double, 3>& scale);

    bool Contains(const QvrPosition& position) const;
    /// Morton code of the cell of depth kQvrLevels that holds a position in the box: three bits per level,
    /// the first level's highest (bits 62 to 60), in each 4 for the upper X half, 2 for Y, 1 for Z.
    std::uint64_t Code(const QvrPosition& position) const {
        std::uint64_t code = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::uint64_t steps = std::uint64_t{qvr::Distance(minimum[axis], position[axis])}
                                        << kQvrLevels;
            code = (code << 1U) | qvr::Spread(steps >> log2Size[axis]);
        }
        return code;
    }
    /// The cell of a depth, at most kQvrLevels, that holds a position in the box.
    QvrRawBox Cell(const QvrPosition& position, unsigned depth) const;

    bool operator==(const QvrBox&) const = default;
};

/// Payload of the index VLR.
struct QvrIndex {
    std::uint16_t factor = 10;  ///< thinning factor
    // The file that the companion was built from.
    std::uint64_t sourceSize = 0;  ///< bytes
    std::int64_t sourceTime = 0;   ///< last change, nanoseconds since 1970-01-01 UTC
    std::uint64_t sourcePoints = 0;
    std::uint64_t sourceHeaderHash = 0;  ///< QvrHeaderHash of its first bytes
    std::uint64_t seed = 0;
    QvrBox box;
    bool isRandom = true;  ///< representatives chosen at random, not the first in the file
    std::uint32_t entryCount = 0;

    /// Most points of an entry whose octant can be split.
    std::uint32_t MostPerEntry() const { return 512U * factor; }
    bool CanHave(std::uint32_t count, unsigned depth) const {
        return count <= MostPerEntry() || depth == kQvrLevels;
    }
    bool operator==(const QvrIndex&) const = default;
};

/// A run of points of one generation in one octant.
struct QvrEntry {
    QvrPosition position{};   ///< of its first point
    std::uint64_t first = 0;  ///< number of its first point in the companion
    std::uint32_t count = 0;
    std::uint16_t generation = 0;  ///< 0 to kQvrLastGeneration
    std::uint16_t depth = 0;       ///< of the octant, which holds `position`; 0 to kQvrLevels

    bool operator==(const QvrEntry&) const = default;
};

/// Index VLR with its header.
IndexVlr EncodeQvrIndex(const QvrIndex& index);
/// Version that the payload of an index VLR states; 0 if it is too short.
std::uint16_t QvrVersionOf(std::span<const std::byte> payload);
/// Index from the VLR's payload; nullopt for another length or version, and for values out of range.
std::optional<QvrIndex> DecodeQvrIndex(std::span<const std::byte> payload);

/// The Thinned VLRs with their headers and entries, one behind the other.
std::vector<std::byte> EncodeQvrEntries(std::span<const QvrEntry> entries);
/// An entry, as it is stored.
QvrEntry DecodeQvrEntry(std::span<const std::byte, kThinnedEntrySize> bytes);

/// 64-bit hash of bytes; of a point record and the seed it is the point's priority in random order.
inline std::uint64_t QvrHash(std::span<const std::byte> bytes, std::uint64_t seed) {
    std::uint64_t hash = qvr::Mix(seed ^ bytes.size());
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(8, bytes.size()))) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), std::min<std::size_t>(8, bytes.size()));
        hash = (std::rotl(hash, 31) ^ word) * 0x9E3779B97F4A7C15U;
    }
    return qvr::Mix(hash);
}
/// QvrHash, with seed 0, of a LAS or LAZ file's header as it is stored, from the file's first bytes: as many
/// as the header states as its size, but at most las::kHeaderSize14 and at most as many as there are.
std::uint64_t QvrHeaderHash(std::span<const std::byte> start);

}  // namespace orvex
