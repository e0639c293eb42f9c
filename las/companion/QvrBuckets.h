#pragma once
// The points of a source, distributed over stretches of the Morton curve that fit into memory.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "las/companion/QvrOrder.h"
#include "las/companion/QvrSizes.h"
#include "las/companion/QvrSource.h"
#include "las/companion/QvrStore.h"
#include "las/companion/QvrWork.h"

namespace orvex {

/// The points of one stretch, in any order.
struct QvrBucket {
    struct Part {
        QvrStore::Block block = 0;
        std::uint32_t records = 0;
    };

    QvrStretch stretch;
    std::uint64_t points = 0;
    std::vector<Part> parts;
};

/// Objects that threads borrow, as many as work at the same time.
template <typename T>
class QvrPool {
  public:
    std::unique_ptr<T> Take() {
        const std::lock_guard guard(lock_);
        if (free_.empty()) {
            return std::make_unique<T>();
        }
        std::unique_ptr<T> object = std::move(free_.back());
        free_.pop_back();
        return object;
    }
    void Give(std::unique_ptr<T> object) {
        const std::lock_guard guard(lock_);
        free_.push_back(std::move(object));
    }
    /// Those that nobody has borrowed.
    std::vector<std::unique_ptr<T>>& Free() { return free_; }

  private:
    std::mutex lock_;
    std::vector<std::unique_ptr<T>> free_;
};

/// Reads a source and distributes its points. Throws LDataError and QvrCancelled.
class QvrBuckets {
  public:
    QvrBuckets(const QvrSource& source, const QvrSizes& sizes, QvrStore& store, QvrWork& work)
        : source_(source), sizes_(sizes), store_(store), work_(work) {}

    /// The buckets in the order of the curve, none with more points than the sizes allow.
    std::vector<QvrBucket> Make();
    /// Known once the buckets are made.
    const QvrBox& Box() const { return box_; }

    /// Stored points of a bucket.
    void Load(const QvrBucket& bucket, std::vector<std::byte>& stored) const;
    QvrPlace PlaceOf(const std::byte* stored) const;
    /// Place of a record that is not stored, by its number in the source.
    QvrPlace PlaceOf(const std::byte* record, std::uint64_t number) const;

  private:
    using Extent = std::pair<QvrPosition, QvrPosition>;
    class Distribution;

    std::vector<QvrBucket> ReadLas();
    std::vector<QvrBucket> ReadLaz();
    Extent DistributeLas(Distribution& distribution);
    void AddLazPoints(Distribution& distribution);
    std::vector<QvrPlace> SampleSource() const;
    std::vector<QvrPlace> SampleBucket(const QvrBucket& bucket) const;
    /// `places`: of a sample of the points.
    std::vector<QvrPlace> BoundsOf(std::vector<QvrPlace> places, std::uint64_t points,
                                   const QvrStretch& stretch) const;
    std::vector<QvrBucket> SplitLarge(std::vector<QvrBucket> buckets);
    std::vector<QvrBucket> Split(const QvrBucket& bucket);
    std::vector<QvrBucket> CutAlike(const QvrBucket& bucket) const;

    const QvrSource& source_;
    const QvrSizes& sizes_;
    QvrStore& store_;
    QvrWork& work_;
    QvrBox box_;
};

}  // namespace orvex
