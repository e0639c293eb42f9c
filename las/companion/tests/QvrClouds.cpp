#include "las/companion/tests/QvrClouds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <tuple>

namespace orvex::testing {

std::string Cloud::Bytes() const {
    LasBuilder builder(version, pointFormat);
    std::mt19937 random(42);
    for (std::size_t i = 0; i < points; ++i) {
        const auto unit = [&] { return static_cast<double>(random() % 100000) / 1000; };
        const auto [x, y, z] = position ? position(i) : std::array{unit(), unit(), 20 + unit() / 50};
        builder.AddPoint(x, y, z);
    }
    if (extraBytes != 0) {
        builder.AddExtraBytes("more", 0, extraBytes);
    }
    if (change) {
        change(builder);
    }
    std::string file = builder.Build();
    const std::size_t length = At<std::uint16_t>(file, las::at::kPointRecordLength);
    const std::size_t start = At<std::uint32_t>(file, las::at::kOffsetToPoints);
    for (std::size_t i = 0; i < points && !areAlike; ++i) {
        for (std::size_t byte = 12; byte < length && start + i * length + byte < file.size(); ++byte) {
            file[start + i * length + byte] = static_cast<char>(random());
        }
    }
    return file;
}

CloudParts::CloudParts(const std::string& file) {
    const LasHeader header(std::as_bytes(std::span(file)));
    head = file.substr(0, header.OffsetToPoints());
    std::size_t at = head.size();
    for (std::uint64_t i = 0; i < header.PointCount(); ++i, at += header.PointRecordLength()) {
        records.push_back(file.substr(at, header.PointRecordLength()));
    }
    tail = file.substr(at);
}

ExpectedOrder::ExpectedOrder(const std::vector<std::string>& source, const QvrIndex& index) {
    struct Point {
        std::uint64_t code;
        std::uint64_t priority;
        std::uint16_t generation;
    };
    std::vector<Point> points;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const QvrPosition position{At<std::int32_t>(source[i], 0), At<std::int32_t>(source[i], 4),
                                   At<std::int32_t>(source[i], 8)};
        const auto bytes = std::as_bytes(std::span(source[i]));
        points.push_back(
            {index.box.Code(position), index.isRandom ? QvrHash(bytes, index.seed) : i, kQvrLastGeneration});
    }
    std::vector<std::size_t> order(points.size());
    std::iota(order.begin(), order.end(), 0U);
    // Round by round the points that have won so far, in the cells of one depth.
    std::vector<std::size_t> winners = order;
    for (unsigned depth = kQvrLevels + 1; depth-- > 0;) {
        std::map<std::uint64_t, std::vector<std::size_t>> cells;
        for (const std::size_t i : winners) {
            cells[points[i].code >> (3 * (kQvrLevels - depth))].push_back(i);
        }
        winners.clear();
        for (auto& [code, members] : cells) {
            std::ranges::sort(members, {}, [&](std::size_t i) {
                return std::tuple(points[i].priority, points[i].code, source[i]);
            });
            winners.push_back(members.front());
            for (unsigned rank = 1; rank < members.size(); ++rank) {
                points[members[rank]].generation =
                    depth == kQvrLevels ? kQvrLastGeneration : QvrGeneration(depth + 1, rank - 1);
            }
        }
    }
    for (const std::size_t i : winners) {
        points[i].generation = 0;
    }
    std::ranges::sort(order, {}, [&](std::size_t i) {
        return std::tuple(points[i].generation, points[i].code, points[i].priority, source[i]);
    });
    for (const std::size_t i : order) {
        records.push_back(source[i]);
        generations.push_back(points[i].generation);
    }
}

std::string BuiltQvr(const std::wstring& source, const QvrSettings& settings) {
    Kst::NullProgress progress;
    const QvrPlan plan = PlanQvr(source, settings);
    EXPECT_TRUE(BuildQvr(plan, settings, progress));
    std::string bytes = ReadFile(plan.target);
    EXPECT_LE(bytes.size(), plan.targetBytes);
    return bytes;
}

}  // namespace orvex::testing
