#pragma once
// The order of all points of a companion, bucket by bucket, and its entries.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "las/companion/QvrBuckets.h"
#include "las/companion/QvrOrder.h"
#include "las/companion/QvrStore.h"

namespace orvex {

/// Orders the points of buckets. Throws LDataError and QvrCancelled.
class QvrOrdering {
  public:
    static constexpr std::size_t kGenerations = std::size_t{kQvrLastGeneration} + 1;
    using Counts = std::array<std::uint64_t, kGenerations>;

    QvrOrdering(const QvrBuckets& points, std::vector<QvrBucket> buckets, const QvrSizes& sizes,
                QvrStore& store, QvrWork& work)
        : points_(points), buckets_(std::move(buckets)), sizes_(sizes), store_(store), work_(work) {}

    /// Orders all buckets; an entry will have at most `mostPerEntry` points where its octant can be split.
    void Run(std::uint32_t mostPerEntry);

    /// The entries, in file order; to be called once.
    std::vector<QvrEntry> Entries();
    std::size_t BucketCount() const { return buckets_.size(); }
    /// Numbers of the first points that the buckets have of each generation.
    std::vector<Counts> FirstPoints() const;

    /// A bucket's records in the order of the file, those of one generation behind those of another.
    struct Sorted {
        std::vector<std::byte> records;
        Counts counts{};
        std::vector<std::byte> stored;     // scratch
        std::vector<std::uint32_t> order;  // scratch
    };
    void Sort(std::size_t bucket, Sorted& sorted) const;

  private:
    /// A point that won within its bucket.
    struct Open {
        QvrPlace at;
        std::uint32_t place = 0;  // in the sorted bucket
        QvrPosition position{};
        std::uint8_t generation = kOpenGeneration;
    };
    struct Ordered {
        std::vector<QvrStore::Block> order;  // of numbers: generation and point, along the curve
        std::array<std::uint32_t, kGenerations> counts{};
        std::vector<QvrRun> runs;
        std::vector<Open> open;
    };
    struct Workspace;

    void OrderBucket(std::size_t bucket, Workspace& space);
    void SortKeys(std::uint64_t points, Workspace& space) const;
    void CollectRuns(std::size_t bucket, const Workspace& space);
    void KeepOrder(Ordered& ordered, const Workspace& space);
    void LoadOrder(std::size_t bucket, std::vector<std::uint32_t>& order) const;
    void DecideOpenPoints();

    const QvrBuckets& points_;
    const std::vector<QvrBucket> buckets_;
    const QvrSizes& sizes_;
    QvrStore& store_;
    QvrWork& work_;
    std::uint32_t mostPerEntry_ = 0;
    std::vector<Ordered> ordered_;
};

}  // namespace orvex
