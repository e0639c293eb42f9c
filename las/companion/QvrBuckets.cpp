#include "las/companion/QvrBuckets.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kMostSpots = 8192;
constexpr std::uint64_t kSpotsPerBucket = 16;
constexpr std::uint64_t kPointsPerSpot = 16;

constexpr std::uint64_t DivideUp(std::uint64_t a, std::uint64_t b) {
    return (a + b - 1) / b;
}

QvrPlace Next(const QvrPlace& place) {
    return place.priority == std::numeric_limits<std::uint64_t>::max()
               ? QvrPlace{place.code + 1, 0}
               : QvrPlace{place.code, place.priority + 1};
}

/// First place of the cell in which two points of different codes part, so that few cells are cut.
QvrPlace Between(std::uint64_t low, std::uint64_t high) {
    const unsigned shift = 3 * (kQvrLevels - 1 - CommonDepth(low, high));
    return {high >> shift << shift, 0};
}

}  // namespace

/// Points on their way into buckets. Each thread fills blocks of its own.
class QvrBuckets::Distribution {
  public:
    Distribution(const QvrBuckets& owner, std::vector<QvrPlace> bounds, const QvrStretch& stretch)
        : owner_(owner), form_(owner.sizes_.form), bounds_(std::move(bounds)), buckets_(bounds_.size() + 1) {
        for (std::size_t i = 0; i < buckets_.size(); ++i) {
            buckets_[i].stretch = {i == 0 ? stretch.low : bounds_[i - 1],
                                   i < bounds_.size() ? bounds_[i] : stretch.high};
        }
    }

    /// Adds records, the first of this number, or stored points without one; any thread.
    void Add(std::span<const std::byte> points, std::optional<std::uint64_t> first) {
        std::unique_ptr<Set> set = sets_.Take();
        const std::size_t stride = first ? form_.recordLength : form_.Stride();
        set->Measure(points, stride);
        if (!owner_.box_.Contains(set->low) || !owner_.box_.Contains(set->high)) {
            isOutside_ = true;  // all has to be done anew; only the extent is still of use
        }
        if (!isOutside_) {
            Copy(*set, points, stride, first.value_or(0));
        }
        sets_.Give(std::move(set));
        owner_.work_.Done(points.size() / stride);
    }

    /// The buckets; to be called once, when all points have been added.
    std::vector<QvrBucket> Take() {
        for (const std::unique_ptr<Set>& set : sets_.Free()) {
            for (std::size_t bucket = 0; bucket < set->blocks.size(); ++bucket) {
                Flush(*set, bucket);
            }
        }
        return std::move(buckets_);
    }

    /// Gives up all that was added.
    void Discard() {
        for (const QvrBucket& bucket : buckets_) {
            for (const QvrBucket::Part& part : bucket.parts) {
                owner_.store_.Free(part.block);
            }
        }
    }

    Extent PointExtent() {
        Set all;
        for (const std::unique_ptr<Set>& set : sets_.Free()) {
            all.Grow(set->low);
            all.Grow(set->high);
        }
        return {all.low, all.high};
    }

  private:
    struct Block {
        std::vector<std::byte> bytes;
        std::uint32_t records = 0;
    };
    struct Set {
        static constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
        static constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

        void Grow(const QvrPosition& position) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                low[axis] = std::min(low[axis], position[axis]);
                high[axis] = std::max(high[axis], position[axis]);
            }
        }
        void Measure(std::span<const std::byte> points, std::size_t stride) {
            for (std::size_t at = 0; at < points.size(); at += stride) {
                Grow(QvrRecordForm::PositionOf(&points[at]));
            }
        }

        QvrPosition low{kMost, kMost, kMost};
        QvrPosition high{kLeast, kLeast, kLeast};
        std::vector<Block> blocks;  // by bucket
    };

    void Copy(Set& set, std::span<const std::byte> points, std::size_t stride, std::uint64_t number) {
        const std::size_t stored = form_.Stride();
        set.blocks.resize(buckets_.size());
        for (std::size_t at = 0; at < points.size(); at += stride, ++number) {
            const std::byte* const point = &points[at];
            const std::size_t bucket = bounds_.empty() ? 0 : BucketOf(point, number, stride);
            Block& block = set.blocks[bucket];
            if (block.bytes.empty()) {
                block.bytes.resize(owner_.sizes_.BlockBytes());
            }
            std::byte* const to = &block.bytes[block.records * stored];
            std::memcpy(to, point, stride);
            if (stride < stored) {
                std::memcpy(to + stride, &number, sizeof(number));
            }
            if (++block.records == owner_.sizes_.blockRecords) {
                Flush(set, bucket);
            }
        }
    }

    std::size_t BucketOf(const std::byte* point, std::uint64_t number, std::size_t stride) const {
        const std::uint64_t code = owner_.box_.Code(QvrRecordForm::PositionOf(point));
        // The number of bounds up to the code; a loop without unforeseeable branches.
        std::size_t first = 0;
        for (std::size_t left = bounds_.size(); left > 0;) {
            const std::size_t half = (left + 1) / 2;
            first += bounds_[first + half - 1].code <= code ? half : 0;
            left -= half;
        }
        if (first == 0 || bounds_[first - 1].code < code || bounds_[first - 1].priority == 0) {
            return first;
        }
        const QvrPlace place =
            stride == form_.Stride() ? owner_.PlaceOf(point) : owner_.PlaceOf(point, number);
        return static_cast<std::size_t>(std::ranges::upper_bound(bounds_, place) - bounds_.begin());
    }

    void Flush(Set& set, std::size_t bucket) {
        Block& block = set.blocks[bucket];
        if (block.records == 0) {
            return;
        }
        const std::size_t bytes = block.records * form_.Stride();
        const QvrStore::Block stored = owner_.store_.Put(std::span(block.bytes).first(bytes));
        const std::lock_guard guard(lock_);
        buckets_[bucket].points += block.records;
        buckets_[bucket].parts.push_back({stored, std::exchange(block.records, 0)});
    }

    const QvrBuckets& owner_;
    const QvrRecordForm form_;
    const std::vector<QvrPlace> bounds_;
    QvrPool<Set> sets_;
    std::atomic<bool> isOutside_ = false;
    std::mutex lock_;  // of buckets_
    std::vector<QvrBucket> buckets_;
};

std::vector<QvrBucket> QvrBuckets::Make() {
    if (source_.Points() == 0) {
        return {};
    }
    return SplitLarge(source_.IsCompressed() ? ReadLaz() : ReadLas());
}

// Headers nearly always state the extent of the points. Only if one does not, the file is read twice.
std::vector<QvrBucket> QvrBuckets::ReadLas() {
    const auto [low, high] = source_.StatedExtent();
    box_ = QvrBox::Around(low, high, source_.Scale());
    for (;;) {
        Distribution distribution(*this, BoundsOf(SampleSource(), source_.Points(), {}), {});
        const auto [first, last] = DistributeLas(distribution);
        const QvrBox box = QvrBox::Around(first, last, source_.Scale());
        if (box == box_) {
            return distribution.Take();
        }
        distribution.Discard();
        box_ = box;
    }
}

QvrBuckets::Extent QvrBuckets::DistributeLas(Distribution& distribution) {
    const std::uint64_t perRead = sizes_.readBytes / sizes_.form.recordLength;
    QvrPool<std::vector<std::byte>> buffers;
    work_.Begin(QvrPhase::Reading, source_.Path(), source_.Points());
    work_.Run(DivideUp(source_.Points(), perRead), [&](std::uint64_t read) {
        const std::uint64_t first = read * perRead;
        const std::uint64_t count = std::min(perRead, source_.Points() - first);
        auto buffer = buffers.Take();
        buffer->resize(count * sizes_.form.recordLength);
        source_.ReadPoints(first, *buffer);
        distribution.Add(*buffer, first);
        buffers.Give(std::move(buffer));
    });
    return distribution.PointExtent();
}

// Nothing is known of compressed points before they are all there; they become one bucket, which is split.
std::vector<QvrBucket> QvrBuckets::ReadLaz() {
    box_ = {{Extent().first}, {32, 32, 32}};
    box_.minimum.fill(std::numeric_limits<std::int32_t>::min());
    Distribution distribution(*this, {}, {});
    AddLazPoints(distribution);
    const auto [low, high] = distribution.PointExtent();
    box_ = QvrBox::Around(low, high, source_.Scale());
    std::vector<QvrBucket> all = distribution.Take();
    return sizes_.BucketsFor(source_.Points()) > 1 ? Split(all.front()) : std::move(all);
}

void QvrBuckets::AddLazPoints(Distribution& distribution) {
    std::atomic<std::uint64_t> points = 0;
    const auto add = [&](std::uint64_t first, std::span<const std::byte> records) {
        points += records.size() / sizes_.form.recordLength;
        distribution.Add(records, first);
        return !work_.IsStopped();
    };
    work_.Begin(QvrPhase::Reading, source_.Path(), 2 * source_.Points());
    work_.Run(1, [&](std::uint64_t) {
        std::wstring reason;
        if (!OrvexUtilities::LAZReadPoints(source_.Path(), sizes_.threads, add, reason) && !reason.empty()) {
            throw LDataError(reason);
        }
    });
    if (points != source_.Points()) {
        throw LDataError(
            FormatText(Text(text::kQvrSourceTruncated),
                       {source_.Path(), GroupedNumber(source_.Points()), GroupedNumber(points)}));
    }
}

std::vector<QvrPlace> QvrBuckets::SampleSource() const {
    const std::uint64_t points = source_.Points();
    const std::uint64_t spots =
        std::min({DivideUp(points, kPointsPerSpot), kMostSpots, kSpotsPerBucket * sizes_.BucketsFor(points)});
    const std::size_t length = sizes_.form.recordLength;
    std::vector<QvrPlace> sample;
    std::vector<std::byte> read;
    for (std::uint64_t spot = 0; spot < spots; ++spot) {
        const std::uint64_t first = points / spots * spot;
        const std::uint64_t count = std::min(kPointsPerSpot, points - first);
        read.resize(count * length);
        source_.ReadPoints(first, read);
        for (std::uint64_t i = 0; i < count; ++i) {
            sample.push_back(PlaceOf(&read[i * length], first + i));
        }
    }
    return sample;
}

std::vector<QvrPlace> QvrBuckets::SampleBucket(const QvrBucket& bucket) const {
    const std::size_t stride = sizes_.form.Stride();
    const std::uint64_t parts = bucket.parts.size();
    const std::uint64_t spots =
        std::min({parts, kMostSpots, kSpotsPerBucket * sizes_.BucketsFor(bucket.points)});
    std::vector<QvrPlace> sample;
    std::vector<std::byte> read;
    for (std::uint64_t spot = 0; spot < spots; ++spot) {
        const QvrBucket::Part& part = bucket.parts[parts / spots * spot];
        read.resize(part.records * stride);
        store_.Get(part.block, read);
        const std::size_t step = DivideUp(part.records, 4 * kPointsPerSpot);
        for (std::size_t record = 0; record < part.records; record += step) {
            sample.push_back(PlaceOf(&read[record * stride]));
        }
    }
    return sample;
}

// Places that part the sample evenly. Where many points have one place, that place alone becomes a bucket.
std::vector<QvrPlace> QvrBuckets::BoundsOf(std::vector<QvrPlace> places, std::uint64_t points,
                                           const QvrStretch& stretch) const {
    std::ranges::sort(places);
    const std::uint64_t buckets = sizes_.BucketsFor(points);
    std::vector<QvrPlace> bounds;
    const std::size_t reach = places.size() / buckets / 8;
    for (std::uint64_t i = 1; i < buckets; ++i) {
        const std::size_t middle = places.size() * i / buckets;
        const QvrPlace& low = places[middle - std::min(middle, std::max<std::size_t>(1, reach))];
        const QvrPlace& high = places[std::min(middle + reach, places.size() - 1)];
        if (low.code != high.code) {
            bounds.push_back(Between(low.code, high.code));
        } else {
            bounds.push_back(places[middle]);
            bounds.push_back(Next(places[middle]));
        }
    }
    std::ranges::sort(bounds);
    std::erase_if(bounds, [&](const QvrPlace& b) { return b <= stretch.low || b >= stretch.high; });
    bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());
    return bounds;
}

std::vector<QvrBucket> QvrBuckets::SplitLarge(std::vector<QvrBucket> buckets) {
    std::vector<QvrBucket> small;
    for (QvrBucket& bucket : buckets) {
        if (bucket.points == 0) {
            continue;
        }
        if (bucket.points <= sizes_.mostPoints) {
            small.push_back(std::move(bucket));
            continue;
        }
        const bool isAlike = bucket.stretch.high == Next(bucket.stretch.low);
        std::vector<QvrBucket> parts = isAlike ? CutAlike(bucket) : SplitLarge(Split(bucket));
        std::ranges::move(parts, std::back_inserter(small));
    }
    return small;
}

std::vector<QvrBucket> QvrBuckets::Split(const QvrBucket& bucket) {
    Distribution distribution(*this, BoundsOf(SampleBucket(bucket), bucket.points, bucket.stretch),
                              bucket.stretch);
    QvrPool<std::vector<std::byte>> buffers;
    work_.Run(bucket.parts.size(), [&](std::uint64_t i) {
        const QvrBucket::Part& part = bucket.parts[i];
        auto buffer = buffers.Take();
        buffer->resize(part.records * sizes_.form.Stride());
        store_.Get(part.block, *buffer);
        store_.Free(part.block);
        distribution.Add(*buffer, std::nullopt);
        buffers.Give(std::move(buffer));
    });
    return distribution.Take();
}

// Points of one place are the same in every byte, or in file order there is just one.
std::vector<QvrBucket> QvrBuckets::CutAlike(const QvrBucket& bucket) const {
    std::vector<QvrBucket> pieces;
    for (const QvrBucket::Part& part : bucket.parts) {
        if (pieces.empty() || pieces.back().points + part.records > sizes_.mostPoints) {
            pieces.push_back({bucket.stretch, 0, {}});
        }
        pieces.back().points += part.records;
        pieces.back().parts.push_back(part);
    }
    return pieces;
}

void QvrBuckets::Load(const QvrBucket& bucket, std::vector<std::byte>& stored) const {
    const std::size_t stride = sizes_.form.Stride();
    stored.resize(bucket.points * stride);
    std::size_t at = 0;
    for (const QvrBucket::Part& part : bucket.parts) {
        store_.Get(part.block, std::span(stored).subspan(at, part.records * stride));
        at += part.records * stride;
    }
}

QvrPlace QvrBuckets::PlaceOf(const std::byte* stored) const {
    return {box_.Code(QvrRecordForm::PositionOf(stored)), sizes_.form.PriorityOf(stored)};
}

QvrPlace QvrBuckets::PlaceOf(const std::byte* record, std::uint64_t number) const {
    return {box_.Code(QvrRecordForm::PositionOf(record)),
            sizes_.form.isRandom ? sizes_.form.PriorityOf(record) : number};
}

}  // namespace orvex
