#include "las/companion/QvrFormat.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "support/ByteReader.h"

namespace orvex {
namespace {

// Offsets in the payload of the index VLR. The number at 45 is MakeIndexVlr's.
namespace index_at {
constexpr std::size_t kVersion = 1;
constexpr std::size_t kFactor = 3;
constexpr std::size_t kSourceSize = 5;
constexpr std::size_t kSourceTime = 13;
constexpr std::size_t kSourcePoints = 21;
constexpr std::size_t kSourceHeaderHash = 29;
constexpr std::size_t kSeed = 37;
constexpr std::size_t kBoxMinimum = 49;
constexpr std::size_t kBoxLog2Size = 61;
constexpr std::size_t kOrder = 64;
constexpr std::size_t kEntryCount = 65;
}  // namespace index_at

namespace entry_at {
constexpr std::size_t kPosition = 0;
constexpr std::size_t kFirst = 12;
constexpr std::size_t kCount = 20;
constexpr std::size_t kGeneration = 24;
constexpr std::size_t kDepth = 26;
}  // namespace entry_at

constexpr unsigned kMostLog2Size = 32;
// An axis in the same units as the others is no longer than this many times the others.
constexpr double kMostZRatio = 64;

template <typename T>
void Put(std::span<std::byte> bytes, std::size_t offset, T value) {
    std::memcpy(bytes.subspan(offset, sizeof(T)).data(), &value, sizeof(T));
}

/// Smallest power of two above the distance, as its exponent.
std::uint8_t NeededLog2(std::int32_t minimum, std::int32_t maximum) {
    return static_cast<std::uint8_t>(std::bit_width(qvr::Distance(minimum, std::max(minimum, maximum))));
}

double UsableScale(double scale) {
    const double size = std::abs(scale);
    return std::isnormal(size) ? size : 1.0;
}

}  // namespace

QvrBox QvrBox::Around(const QvrPosition& minimum, const QvrPosition& maximum,
                      const std::array<double, 3>& scale) {
    QvrBox box{minimum, {}};
    std::array<double, 3> size{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        box.log2Size[axis] = NeededLog2(minimum[axis], maximum[axis]);
        size[axis] = std::ldexp(UsableScale(scale[axis]), box.log2Size[axis]);
    }
    double side = std::max(size[0], size[1]);
    if (size[2] <= kMostZRatio * side) {
        side = std::max(side, size[2]);
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double wanted = std::round(std::log2(side / UsableScale(scale[axis])));
        const double needed = box.log2Size[axis];
        const double usable = std::clamp(wanted, needed, static_cast<double>(kMostLog2Size));
        box.log2Size[axis] = static_cast<std::uint8_t>(usable);
    }
    return box;
}

bool QvrBox::Contains(const QvrPosition& position) const {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const std::uint64_t distance = qvr::Distance(minimum[axis], position[axis]);
        if (position[axis] < minimum[axis] || distance >> log2Size[axis] != 0) {
            return false;
        }
    }
    return true;
}

QvrRawBox QvrBox::Cell(const QvrPosition& position, unsigned depth) const {
    QvrRawBox cell;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double side = std::ldexp(1.0, static_cast<int>(log2Size[axis]) - static_cast<int>(depth));
        const double steps =
            std::floor(static_cast<double>(qvr::Distance(minimum[axis], position[axis])) / side);
        cell.low[axis] = minimum[axis] + steps * side;
        cell.high[axis] = cell.low[axis] + side;
    }
    return cell;
}

IndexVlr EncodeQvrIndex(const QvrIndex& index) {
    IndexVlr record = MakeIndexVlr();
    const auto payload = std::span(record).subspan(las::kVlrHeaderSize);
    Put(payload, index_at::kVersion, kQvrVersion);
    Put(payload, index_at::kFactor, index.factor);
    Put(payload, index_at::kSourceSize, index.sourceSize);
    Put(payload, index_at::kSourceTime, index.sourceTime);
    Put(payload, index_at::kSourcePoints, index.sourcePoints);
    Put(payload, index_at::kSourceHeaderHash, index.sourceHeaderHash);
    Put(payload, index_at::kSeed, index.seed);
    Put(payload, index_at::kBoxMinimum, index.box.minimum);
    Put(payload, index_at::kBoxLog2Size, index.box.log2Size);
    Put(payload, index_at::kOrder, static_cast<std::uint8_t>(index.isRandom ? 1 : 0));
    Put(payload, index_at::kEntryCount, index.entryCount);
    return record;
}

std::uint16_t QvrVersionOf(std::span<const std::byte> payload) {
    return ByteReader(payload).Read<std::uint16_t>(index_at::kVersion);
}

std::optional<QvrIndex> DecodeQvrIndex(std::span<const std::byte> payload) {
    const ByteReader reader(payload);
    const auto order = reader.Read<std::uint8_t>(index_at::kOrder);
    if (payload.size() != kIndexPayloadSize || order > 1 || QvrVersionOf(payload) != kQvrVersion) {
        return std::nullopt;
    }
    QvrIndex index;
    index.factor = reader.Read<std::uint16_t>(index_at::kFactor);
    index.sourceSize = reader.Read<std::uint64_t>(index_at::kSourceSize);
    index.sourceTime = reader.Read<std::int64_t>(index_at::kSourceTime);
    index.sourcePoints = reader.Read<std::uint64_t>(index_at::kSourcePoints);
    index.sourceHeaderHash = reader.Read<std::uint64_t>(index_at::kSourceHeaderHash);
    index.seed = reader.Read<std::uint64_t>(index_at::kSeed);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        index.box.minimum[axis] = reader.Read<std::int32_t>(index_at::kBoxMinimum + 4 * axis);
        index.box.log2Size[axis] = reader.Read<std::uint8_t>(index_at::kBoxLog2Size + axis);
    }
    index.isRandom = order == 1;
    index.entryCount = reader.Read<std::uint32_t>(index_at::kEntryCount);
    const bool isUsable = index.factor != 0 && std::ranges::max(index.box.log2Size) <= kMostLog2Size;
    return isUsable ? std::optional(index) : std::nullopt;
}

std::vector<std::byte> EncodeQvrEntries(std::span<const QvrEntry> entries) {
    std::vector<std::byte> bytes;
    const auto count = static_cast<std::uint32_t>(entries.size());
    bytes.reserve(ThinnedBytesNeeded(count, kThinnedEntrySize));
    const std::uint32_t perVlr = ThinnedEntriesPerVlr(kThinnedEntrySize);
    for (std::uint32_t first = 0; first < count; first += perVlr) {
        const std::uint32_t here = std::min(perVlr, count - first);
        ThinnedVlrHead head = MakeThinnedVlr();
        FillThinnedVlr(head, {first, here, kThinnedEntrySize});
        bytes.insert(bytes.end(), head.begin(), head.end());
        for (const QvrEntry& entry : entries.subspan(first, here)) {
            std::array<std::byte, kThinnedEntrySize> stored{};
            Put(stored, entry_at::kPosition, entry.position);
            Put(stored, entry_at::kFirst, entry.first);
            Put(stored, entry_at::kCount, entry.count);
            Put(stored, entry_at::kGeneration, entry.generation);
            Put(stored, entry_at::kDepth, entry.depth);
            bytes.insert(bytes.end(), stored.begin(), stored.end());
        }
    }
    return bytes;
}

QvrEntry DecodeQvrEntry(std::span<const std::byte, kThinnedEntrySize> bytes) {
    const ByteReader reader(bytes);
    QvrEntry entry;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        entry.position[axis] = reader.Read<std::int32_t>(entry_at::kPosition + 4 * axis);
    }
    entry.first = reader.Read<std::uint64_t>(entry_at::kFirst);
    entry.count = reader.Read<std::uint32_t>(entry_at::kCount);
    entry.generation = reader.Read<std::uint16_t>(entry_at::kGeneration);
    entry.depth = reader.Read<std::uint16_t>(entry_at::kDepth);
    return entry;
}

std::uint64_t QvrHeaderHash(std::span<const std::byte> start) {
    const ByteReader reader(start);
    const auto size =
        std::min<std::uint64_t>(reader.Read<std::uint16_t>(las::at::kHeaderSize), las::kHeaderSize14);
    return QvrHash(reader.Bytes(0, size), 0);
}

}  // namespace orvex
