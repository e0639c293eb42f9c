#pragma once
// The order of a companion's points, for one stretch of the Morton curve at a time: sorting, generations, and
// the runs of points that become entries.
#include <array>
#include <compare>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "las/companion/QvrFormat.h"

namespace orvex {

/// Place of a point on the curve: Morton code, and among points of one code the priority, the least first.
struct QvrPlace {
    std::uint64_t code = 0;
    std::uint64_t priority = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): a false alarm about comparisons that the compiler writes
    auto operator<=>(const QvrPlace&) const = default;
};

struct QvrKey {
    QvrPlace place;
    std::uint32_t point = 0;  ///< number of the record in its buffer
};

/// Sorts by place, in linear time as far as codes differ. `scratch` becomes as large as `keys`.
void SortQvrKeys(std::vector<QvrKey>& keys, std::vector<QvrKey>& scratch);

/// Depth of the smallest cell that holds two Morton codes; kQvrLevels for equal ones.
unsigned CommonDepth(std::uint64_t a, std::uint64_t b);

/// Part of the curve, from `low` up to but excluding `high`. Cells that reach beyond it have points that are
/// not known here.
struct QvrStretch {
    QvrPlace low;
    QvrPlace high{std::numeric_limits<std::uint64_t>::max(), 0};

    /// True if the cell of a depth that holds a code lies inside.
    bool HasCell(std::uint64_t code, unsigned depth) const;
};

/// Generation of a point that won in all cells inside its stretch.
inline constexpr std::uint8_t kOpenGeneration = 255;
/// Generations of sorted keys. A point that wins in all cells inside the stretch stays kOpenGeneration,
/// unless the stretch is the whole curve: then the winner has 0.
void AssignGenerations(std::span<const QvrKey> keys, const QvrStretch& stretch,
                       std::span<std::uint8_t> generations);

/// Consecutive points of one generation.
struct QvrRun {
    std::uint64_t firstCode = 0;
    std::uint64_t lastCode = 0;
    std::uint32_t count = 0;
    QvrPosition position{};    ///< of its first point; who joins runs can fill it in afterwards
    std::uint32_t bucket = 0;  ///< of its first point
    std::uint32_t place = 0;   ///< of its first point in the sorted bucket
    std::uint8_t generation = 0;
};

/// Joins the runs of one generation, added in order, where an octant inside the stretch has at most `most`
/// points; points of one code always.
class QvrRunJoiner {
  public:
    QvrRunJoiner(const QvrStretch& stretch, std::uint32_t most) : stretch_(stretch), most_(most) {}

    void Add(const QvrRun& run);
    /// The joined runs, in order; to be called once.
    std::vector<QvrRun> Take();

  private:
    struct Node {
        unsigned depth = 0;
        std::size_t start = 0;  // of its runs in runs_
        std::uint64_t total = 0;
    };

    void Close();

    QvrStretch stretch_;
    std::uint64_t most_;
    std::vector<QvrRun> runs_;
    std::array<Node, kQvrLevels + 1> open_{};  // the path to the last run, of increasing depths
    std::size_t openCount_ = 0;
    Node last_;
};

}  // namespace orvex
