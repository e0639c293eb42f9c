#include "las/testing/QvrSample.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <map>
#include <tuple>

#include "las/LasHeader.h"
#include "las/companion/QvrBuilder.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {
namespace {

struct SamplePoint {
    std::string record;
    QvrPosition position{};
    std::uint64_t code = 0;
    std::uint64_t priority = 0;
    std::uint16_t generation = kQvrLastGeneration;
};

std::span<const std::byte> BytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

std::vector<SamplePoint> PointsOf(const std::string& las, const LasHeader& header) {
    std::vector<SamplePoint> points(header.PointCount());
    const std::uint16_t length = header.PointRecordLength();
    for (std::size_t i = 0; i < points.size(); ++i) {
        SamplePoint& point = points[i];
        point.record = las.substr(header.OffsetToPoints() + i * length, length);
        std::memcpy(point.position.data(), point.record.data(), sizeof(point.position));
        point.priority = QvrHash(BytesOf(point.record), 0);
    }
    return points;
}

QvrBox BoxAround(const std::vector<SamplePoint>& points, const LasHeader& header) {
    QvrPosition low{};
    QvrPosition high{};
    for (std::size_t axis = 0; axis < 3 && !points.empty(); ++axis) {
        const auto [first, last] = std::ranges::minmax(
            points, {}, [axis](const SamplePoint& point) { return point.position[axis]; });
        low[axis] = first.position[axis];
        high[axis] = last.position[axis];
    }
    return QvrBox::Around(low, high, header.Scale());
}

// Points are sorted by priority: the first one of a cell is its winner, and losers get their ranks in order.
void SetGenerations(std::vector<SamplePoint>& points) {
    for (unsigned level = 0; level <= kQvrLevels; ++level) {
        std::map<std::uint64_t, bool> isWon;
        std::map<std::uint64_t, unsigned> losers;
        const unsigned shift = 3 * (kQvrLevels - level);
        for (SamplePoint& point : points) {
            const std::uint64_t cell = point.code >> shift;
            if (!isWon.emplace(cell, true).second || point.generation != kQvrLastGeneration) {
                continue;
            }
            point.generation = QvrGeneration(level, losers[cell >> 3U]++);
        }
    }
}

std::vector<QvrEntry> EntriesOf(const std::vector<SamplePoint>& points, std::uint16_t depth,
                                std::uint32_t most) {
    std::vector<QvrEntry> entries;
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const SamplePoint& point = points[i];
        const std::uint64_t octant = point.code >> (3 * (kQvrLevels - depth));
        if (entries.empty() || entries.back().generation != point.generation || octant != last ||
            entries.back().count == most) {
            entries.push_back({point.position, i, 0, point.generation, depth});
        }
        ++entries.back().count;
        last = octant;
    }
    return entries;
}

template <typename T>
void Put(std::string& bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

}  // namespace

std::string QvrBytes(const std::string& las, const QvrIndex& index, const std::vector<QvrEntry>& entries,
                     const std::string& points) {
    const LasHeader header(BytesOf(las));
    const IndexVlr indexVlr = EncodeQvrIndex(index);
    const std::vector<std::byte> thinned = EncodeQvrEntries(entries);
    std::string start = las.substr(0, header.HeaderSize());
    Put(start, las::at::kOffsetToPoints,
        static_cast<std::uint32_t>(start.size() + indexVlr.size() + thinned.size()));
    Put(start, las::at::kVlrCount,
        static_cast<std::uint32_t>(
            1 + ThinnedVlrCount(static_cast<std::uint32_t>(entries.size()), kThinnedEntrySize)));
    const auto text = [](std::span<const std::byte> bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    return start + text(indexVlr) + text(thinned) + points;
}

std::string QvrBytes(const std::string& las, std::int64_t time, std::uint16_t depth) {
    const LasHeader header(BytesOf(las));
    std::vector<SamplePoint> points = PointsOf(las, header);
    QvrIndex index;
    index.sourceSize = las.size();
    index.sourceTime = time;
    index.sourcePoints = points.size();
    index.sourceHeaderHash = QvrHeaderHash(BytesOf(las));
    index.box = BoxAround(points, header);
    for (SamplePoint& point : points) {
        point.code = index.box.Code(point.position);
    }
    std::ranges::sort(points, {}, &SamplePoint::priority);
    SetGenerations(points);
    std::ranges::sort(points, {}, [](const SamplePoint& point) {
        return std::tuple(point.generation, point.code, point.priority);
    });
    const std::vector<QvrEntry> entries = EntriesOf(points, depth, index.MostPerEntry());
    index.entryCount = static_cast<std::uint32_t>(entries.size());
    std::string records;
    for (const SamplePoint& point : points) {
        records += point.record;
    }
    return QvrBytes(las, index, entries, records);
}

std::wstring WriteQvrBeside(const std::wstring& lasPath) {
    const auto time = LastWriteTime(lasPath).value().time_since_epoch();
    std::wstring path = QvrPathOf(lasPath);
    std::ofstream(ToPath(path), std::ios::binary)
        << QvrBytes(ReadFile(lasPath), std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
    return path;
}

}  // namespace orvex::testing
