#include "las/companion/QvrOrder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <utility>

namespace orvex {
namespace {

constexpr std::size_t kFewKeys = 256;
constexpr unsigned kDigitBits = 11;
constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
constexpr std::uint32_t kNoPoint = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kMostCount = std::numeric_limits<std::uint32_t>::max();

bool IsBefore(const QvrKey& a, const QvrKey& b) {
    return a.place < b.place;
}

/// Sorts by one digit of the codes, keeping the order of keys with the same digit.
void SortByDigit(std::span<const QvrKey> keys, std::span<QvrKey> sorted, unsigned shift) {
    const auto digit = [shift](const QvrKey& key) { return (key.place.code >> shift) & (kDigits - 1); };
    std::array<std::uint32_t, kDigits> next{};
    for (const QvrKey& key : keys) {
        ++next[digit(key)];
    }
    std::exclusive_scan(next.begin(), next.end(), next.begin(), 0U);
    for (const QvrKey& key : keys) {
        sorted[next[digit(key)]++] = key;
    }
}

/// Sorts keys that are sorted by code by the priority, too.
void SortAlike(std::span<QvrKey> keys) {
    for (auto first = keys.begin(); first != keys.end();) {
        const auto last = std::find_if(
            first + 1, keys.end(), [&](const QvrKey& key) { return key.place.code != first->place.code; });
        if (last - first > 1) {
            std::sort(first, last, IsBefore);
        }
        first = last;
    }
}

/// The tree of the cells in which points meet, taken along the curve: `open_` is the path to the last point.
class Generations {
  public:
    Generations(std::span<const QvrKey> keys, const QvrStretch& stretch, std::span<std::uint8_t> generations)
        : keys_(keys), stretch_(stretch), generations_(generations) {}

    void Assign() {
        std::uint32_t winner = 0;
        for (std::uint32_t i = 1; i < keys_.size(); ++i) {
            const unsigned depth = CommonDepth(keys_[i - 1].place.code, keys_[i].place.code);
            if (depth == kQvrLevels) {
                generations_[i] = static_cast<std::uint8_t>(kQvrLastGeneration);
                continue;
            }
            winner = CloseBelow(depth, winner);
            if (count_ == 0 || open_[count_ - 1].depth < depth) {
                open_[count_].depth = depth;
                open_[count_++].count = 0;
            }
            open_[count_ - 1].Add(winner);
            winner = i;
        }
        while (count_ > 0) {
            winner = Close(winner);
        }
        if (winner != kNoPoint && stretch_.HasCell(keys_[winner].place.code, 0)) {
            generations_[winner] = 0;
        }
    }

  private:
    struct Node {
        unsigned depth = 0;
        unsigned count = 0;
        std::array<std::uint32_t, 8> winners{};  // of the cells of the next depth

        void Add(std::uint32_t winner) {
            if (winner != kNoPoint) {
                winners[count++] = winner;
            }
        }
    };

    std::uint32_t CloseBelow(unsigned depth, std::uint32_t winner) {
        while (count_ > 0 && open_[count_ - 1].depth > depth) {
            winner = Close(winner);
        }
        return winner;
    }

    /// Winner of the deepest open cell; kNoPoint if that cell reaches beyond the stretch.
    std::uint32_t Close(std::uint32_t last) {
        Node& node = open_[--count_];
        node.Add(last);
        if (node.count == 0 || !stretch_.HasCell(keys_[node.winners[0]].place.code, node.depth)) {
            return kNoPoint;
        }
        const std::span<std::uint32_t> winners(node.winners.data(), node.count);
        SortByPriority(winners);
        for (unsigned rank = 1; rank < node.count; ++rank) {
            generations_[winners[rank]] = static_cast<std::uint8_t>(QvrGeneration(node.depth + 1, rank - 1));
        }
        return winners[0];
    }

    // Insertion keeps equal priorities in the order of the curve.
    void SortByPriority(std::span<std::uint32_t> winners) const {
        for (std::size_t i = 1; i < winners.size(); ++i) {
            for (std::size_t j = i; j > 0 && Priority(winners[j]) < Priority(winners[j - 1]); --j) {
                std::swap(winners[j], winners[j - 1]);
            }
        }
    }

    std::uint64_t Priority(std::uint32_t key) const { return keys_[key].place.priority; }

    std::span<const QvrKey> keys_;
    const QvrStretch& stretch_;
    std::span<std::uint8_t> generations_;
    std::array<Node, kQvrLevels> open_{};  // of increasing depths
    std::size_t count_ = 0;
};

}  // namespace

void SortQvrKeys(std::vector<QvrKey>& keys, std::vector<QvrKey>& scratch) {
    if (keys.size() <= kFewKeys) {
        std::ranges::sort(keys, IsBefore);
        return;
    }
    scratch.resize(keys.size());
    std::uint64_t differing = 0;
    for (const QvrKey& key : keys) {
        differing |= key.place.code ^ keys.front().place.code;
    }
    // Codes of one stretch have their upper bits in common, and often their lowest.
    const auto lowest = static_cast<unsigned>(std::countr_zero(differing));
    for (unsigned shift = lowest; shift < 64 && differing >> shift != 0; shift += kDigitBits) {
        SortByDigit(keys, scratch, shift);
        keys.swap(scratch);
    }
    SortAlike(keys);
}

unsigned CommonDepth(std::uint64_t a, std::uint64_t b) {
    return a == b ? kQvrLevels : (static_cast<unsigned>(std::countl_zero(a ^ b)) - 1) / 3;
}

bool QvrStretch::HasCell(std::uint64_t code, unsigned depth) const {
    const unsigned shift = 3 * (kQvrLevels - depth);
    const std::uint64_t start = code >> shift << shift;
    const std::uint64_t end = start + (std::uint64_t{1} << shift);
    // Of the points of the code that the stretch begins within, some lie before it.
    return (low.priority == 0 ? low.code : low.code + 1) <= start && end <= high.code;
}

void AssignGenerations(std::span<const QvrKey> keys, const QvrStretch& stretch,
                       std::span<std::uint8_t> generations) {
    std::ranges::fill(generations, kOpenGeneration);
    if (!keys.empty()) {
        Generations(keys, stretch, generations).Assign();
    }
}

// The tree of the cells in which runs meet; a cell with few enough points becomes one run.
void QvrRunJoiner::Add(const QvrRun& run) {
    if (!runs_.empty()) {
        QvrRun& previous = runs_.back();
        const unsigned depth = CommonDepth(previous.lastCode, run.firstCode);
        if (depth == kQvrLevels && run.count <= kMostCount - previous.count) {
            previous.count += run.count;
            last_.total += run.count;
            return;
        }
        while (openCount_ > 0 && open_[openCount_ - 1].depth > depth) {
            Close();
        }
        if (openCount_ == 0 || open_[openCount_ - 1].depth < depth) {
            open_[openCount_++] = {depth, last_.start, 0};
        }
        open_[openCount_ - 1].total += last_.total;
    }
    last_ = {kQvrLevels, runs_.size(), run.count};
    runs_.push_back(run);
}

void QvrRunJoiner::Close() {
    Node& node = open_[--openCount_];
    node.total += last_.total;
    last_ = node;
    QvrRun& first = runs_[last_.start];
    if (last_.total <= most_ && stretch_.HasCell(first.firstCode, last_.depth)) {
        first.lastCode = runs_.back().lastCode;
        first.count = static_cast<std::uint32_t>(last_.total);
        runs_.resize(last_.start + 1);
    }
}

std::vector<QvrRun> QvrRunJoiner::Take() {
    while (openCount_ > 0) {
        Close();
    }
    return std::move(runs_);
}

}  // namespace orvex
