#include "las/companion/QvrOrdering.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

namespace orvex {
namespace {

// A generation and the number of a point within its bucket, in one number.
constexpr unsigned kPointBits = 24;
constexpr std::uint32_t kPointMask = (1U << kPointBits) - 1;

}  // namespace

struct QvrOrdering::Workspace {
    std::vector<std::byte> stored;
    std::vector<QvrKey> keys;
    std::vector<QvrKey> scratch;
    std::vector<std::uint8_t> generations;
};

void QvrOrdering::Run(std::uint32_t mostPerEntry) {
    mostPerEntry_ = mostPerEntry;
    ordered_.resize(buckets_.size());
    QvrPool<Workspace> spaces;
    work_.Run(buckets_.size(), [&](std::uint64_t bucket) {
        auto space = spaces.Take();
        OrderBucket(bucket, *space);
        spaces.Give(std::move(space));
        work_.Done(buckets_[bucket].points);
    });
    DecideOpenPoints();
}

void QvrOrdering::OrderBucket(std::size_t bucket, Workspace& space) {
    Ordered& ordered = ordered_[bucket];
    points_.Load(buckets_[bucket], space.stored);
    SortKeys(buckets_[bucket].points, space);
    space.generations.resize(space.keys.size());
    AssignGenerations(space.keys, buckets_[bucket].stretch, space.generations);
    for (std::uint32_t place = 0; place < space.keys.size(); ++place) {
        const QvrKey& key = space.keys[place];
        const std::uint8_t generation = space.generations[place];
        if (generation == kOpenGeneration) {
            const std::byte* const point = &space.stored[key.point * sizes_.form.Stride()];
            ordered.open.push_back({key.place, place, QvrRecordForm::PositionOf(point)});
        } else {
            ++ordered.counts[generation];
        }
    }
    CollectRuns(bucket, space);
    KeepOrder(ordered, space);
}

void QvrOrdering::SortKeys(std::uint64_t points, Workspace& space) const {
    const std::size_t stride = sizes_.form.Stride();
    space.keys.resize(points);
    for (std::uint32_t point = 0; point < points; ++point) {
        space.keys[point] = {points_.PlaceOf(&space.stored[point * stride]), point};
    }
    SortQvrKeys(space.keys, space.scratch);
    // Records of one place differ only if their hashes happen to be the same; their bytes decide.
    const auto isBefore = [&](const QvrKey& a, const QvrKey& b) {
        return std::memcmp(&space.stored[a.point * stride], &space.stored[b.point * stride],
                           sizes_.form.recordLength) < 0;
    };
    for (auto first = space.keys.begin(); first != space.keys.end();) {
        const auto last = std::find_if(first + 1, space.keys.end(),
                                       [&](const QvrKey& key) { return key.place != first->place; });
        if (last - first > 1 && !std::is_sorted(first, last, isBefore)) {
            std::sort(first, last, isBefore);
        }
        first = last;
    }
}

void QvrOrdering::CollectRuns(std::size_t bucket, const Workspace& space) {
    const std::size_t stride = sizes_.form.Stride();
    const auto number = static_cast<std::uint32_t>(bucket);
    std::vector<QvrRunJoiner> joiners(kGenerations, {buckets_[bucket].stretch, mostPerEntry_});
    for (std::uint32_t place = 0; place < space.keys.size(); ++place) {
        const QvrKey& key = space.keys[place];
        const std::uint8_t generation = space.generations[place];
        if (generation != kOpenGeneration) {
            joiners[generation].Add({key.place.code, key.place.code, 1, {}, number, place, generation});
        }
    }
    for (QvrRunJoiner& joiner : joiners) {
        for (QvrRun& run : joiner.Take()) {
            run.position = QvrRecordForm::PositionOf(&space.stored[space.keys[run.place].point * stride]);
            ordered_[bucket].runs.push_back(run);
        }
    }
}

void QvrOrdering::KeepOrder(Ordered& ordered, const Workspace& space) {
    std::vector<std::uint32_t> order(space.keys.size());
    for (std::size_t place = 0; place < order.size(); ++place) {
        order[place] = (std::uint32_t{space.generations[place]} << kPointBits) | space.keys[place].point;
    }
    for (auto bytes = std::as_bytes(std::span(order)); !bytes.empty();) {
        const auto part = bytes.first(std::min(bytes.size(), store_.BlockBytes()));
        ordered.order.push_back(store_.Put(part));
        bytes = bytes.subspan(part.size());
    }
}

void QvrOrdering::LoadOrder(std::size_t bucket, std::vector<std::uint32_t>& order) const {
    order.resize(buckets_[bucket].points);
    auto bytes = std::as_writable_bytes(std::span(order));
    for (const QvrStore::Block block : ordered_[bucket].order) {
        const auto part = bytes.first(std::min(bytes.size(), store_.BlockBytes()));
        store_.Get(block, part);
        bytes = bytes.subspan(part.size());
    }
    for (const Open& open : ordered_[bucket].open) {
        order[open.place] = (std::uint32_t{open.generation} << kPointBits) | (order[open.place] & kPointMask);
    }
}

// The winners of all buckets meet in the cells that no bucket has to itself.
void QvrOrdering::DecideOpenPoints() {
    std::vector<QvrKey> keys;
    for (const Ordered& ordered : ordered_) {
        for (const Open& open : ordered.open) {
            keys.push_back({open.at, 0});
        }
    }
    std::vector<std::uint8_t> generations(keys.size());
    AssignGenerations(keys, {}, generations);
    auto next = generations.begin();
    for (Ordered& ordered : ordered_) {
        for (Open& open : ordered.open) {
            open.generation = *next++;
            ++ordered.counts[open.generation];
        }
    }
}

std::vector<QvrEntry> QvrOrdering::Entries() {
    std::vector<QvrRun> runs;
    for (std::uint32_t bucket = 0; bucket < ordered_.size(); ++bucket) {
        const std::vector<QvrRun> own = std::exchange(ordered_[bucket].runs, {});
        runs.insert(runs.end(), own.begin(), own.end());
        for (const Open& open : ordered_[bucket].open) {
            runs.push_back(
                {open.at.code, open.at.code, 1, open.position, bucket, open.place, open.generation});
        }
    }
    std::ranges::sort(runs, {},
                      [](const QvrRun& run) { return std::tuple(run.generation, run.bucket, run.place); });
    std::vector<QvrEntry> entries;
    std::uint64_t first = 0;
    for (auto run = runs.begin(); run != runs.end();) {
        QvrRunJoiner joiner({}, mostPerEntry_);
        const std::uint8_t generation = run->generation;
        for (; run != runs.end() && run->generation == generation; ++run) {
            joiner.Add(*run);
        }
        for (const QvrRun& joined : joiner.Take()) {
            const auto depth = static_cast<std::uint16_t>(CommonDepth(joined.firstCode, joined.lastCode));
            entries.push_back({joined.position, first, joined.count, generation, depth});
            first += joined.count;
        }
    }
    return entries;
}

std::vector<QvrOrdering::Counts> QvrOrdering::FirstPoints() const {
    std::vector<Counts> firsts(buckets_.size());
    std::uint64_t next = 0;
    for (std::size_t generation = 0; generation < kGenerations; ++generation) {
        for (std::size_t bucket = 0; bucket < buckets_.size(); ++bucket) {
            firsts[bucket][generation] = next;
            next += ordered_[bucket].counts[generation];
        }
    }
    return firsts;
}

void QvrOrdering::Sort(std::size_t bucket, Sorted& sorted) const {
    const std::size_t length = sizes_.form.recordLength;
    points_.Load(buckets_[bucket], sorted.stored);
    LoadOrder(bucket, sorted.order);
    std::ranges::copy(ordered_[bucket].counts, sorted.counts.begin());
    sorted.records.resize(sorted.order.size() * length);
    Counts next{};
    for (std::size_t generation = 1; generation < kGenerations; ++generation) {
        next[generation] = next[generation - 1] + sorted.counts[generation - 1];
    }
    for (const std::uint32_t number : sorted.order) {
        const std::byte* const from = &sorted.stored[(number & kPointMask) * sizes_.form.Stride()];
        std::memcpy(&sorted.records[next[number >> kPointBits]++ * length], from, length);
    }
}

}  // namespace orvex
