#include "las/companion/QvrSizes.h"

#include <algorithm>
#include <thread>

namespace orvex {
namespace {

// A bucket of so many points and its keys stay in a processor's cache.
constexpr std::uint64_t kHandyPoints = std::uint64_t{1} << 17U;
constexpr std::uint64_t kMostPoints = (std::uint64_t{1} << 24U) - 1;
// Two keys of a point, its generation, its place in the order.
constexpr std::uint64_t kKeyBytes = 64;
constexpr std::uint64_t kMostBuckets = std::uint64_t{1} << 16U;
constexpr std::uint64_t kMemoryBlock = std::uint64_t{16} << 10U;
constexpr std::uint64_t kFileBlock = std::uint64_t{64} << 10U;
constexpr std::uint64_t kSmallestBlock = std::uint64_t{4} << 10U;
constexpr std::uint64_t kSmallestRead = std::uint64_t{64} << 10U;
constexpr std::uint64_t kLargestRead = std::uint64_t{512} << 10U;
constexpr std::uint64_t kFewestPoints = 64;
// Counts, runs and representatives that are kept of each bucket, and what is kept for as many points as an
// entry may have, on a surface about three entries with their runs; both as measured.
constexpr std::uint64_t kBucketBytes = std::uint64_t{24} << 10U;
constexpr std::uint64_t kEntriesBytes = 600;
constexpr std::uint64_t kLeastForBuckets = std::uint64_t{4} << 20U;

constexpr std::uint64_t DivideUp(std::uint64_t a, std::uint64_t b) {
    return (a + b - 1) / b;
}

constexpr std::uint32_t Narrow(std::uint64_t number) {
    return static_cast<std::uint32_t>(number);
}

}  // namespace

QvrSizes QvrSizes::For(std::uint64_t points, std::size_t recordLength, const QvrSettings& settings) {
    QvrSizes sizes;
    sizes.form = {recordLength, settings.randomOrder.value_or(true), settings.seed};
    sizes.threads =
        settings.threads == 0 ? std::max(1U, std::thread::hardware_concurrency()) : settings.threads;
    const std::uint64_t fullEntries =
        points / (std::uint64_t{512} * std::max<std::uint16_t>(1, settings.factor));
    // A split octant has more points than an entry may have, and up to eight entries instead.
    sizes.mostEntries = std::min(points, 8 * fullEntries + 1000);
    sizes.entriesBytes = fullEntries * kEntriesBytes;
    sizes.ChooseThreads(points, settings.memory);
    sizes.ChoosePlace(points, settings.memory);
    sizes.AddUp(points);
    return sizes;
}

// A thread has the blocks that it fills while points are distributed, and later the bucket that it orders. Of
// fewer threads each has larger buckets, so that less is kept of all buckets together.
void QvrSizes::ChooseThreads(std::uint64_t points, std::uint64_t memory) {
    const std::uint64_t most = memory / 4 * 3 / (kFewestPoints * BytesPerPoint());
    threads = Narrow(std::clamp<std::uint64_t>(most, 1, threads));
    ChooseBuckets(points, memory);
    while (threads > 1 && FinalBuckets(points) * kBucketBytes > RoomForBuckets(memory)) {
        --threads;
        ChooseBuckets(points, memory);
    }
}

void QvrSizes::ChooseBuckets(std::uint64_t points, std::uint64_t memory) {
    const std::uint64_t perThread = memory / 4 * 3 / threads;
    const std::uint64_t handy =
        std::max(kHandyPoints, DivideUp(points, RoomForBuckets(memory) / kBucketBytes));
    const std::uint64_t block = std::max<std::uint64_t>(kSmallestBlock, form.Stride());
    readBytes =
        std::max<std::uint64_t>(std::clamp(perThread / 8, kSmallestRead, kLargestRead), form.recordLength);
    mostPoints = Narrow(std::clamp<std::uint64_t>(perThread / BytesPerPoint(), kFewestPoints, kMostPoints));
    wantedPoints = Narrow(std::min(std::uint64_t{mostPoints} / 3 * 2, handy));
    mostBuckets = Narrow(std::clamp<std::uint64_t>(perThread / block, 8, kMostBuckets));
}

void QvrSizes::ChoosePlace(std::uint64_t points, std::uint64_t memory) {
    const std::uint64_t buckets = BucketsFor(points);
    const std::uint64_t inMemory = std::max<std::uint64_t>(kMemoryBlock, form.Stride());
    const std::uint64_t ordered = std::min<std::uint64_t>(wantedPoints, points) * BytesPerPoint();
    const std::uint64_t working =
        threads * std::max(buckets * inMemory + readBytes, ordered) + KeptBytes(points);
    isInMemory = memory > working && points <= (memory - working) / BytesPerStored();
    if (isInMemory) {
        const std::uint64_t left =
            (memory - points * BytesPerStored() - KeptBytes(points)) / threads / BytesPerPoint();
        mostPoints = Narrow(std::clamp<std::uint64_t>(left, wantedPoints, mostPoints));
    }
    // Those that are not full shall not take more than a quarter of the space.
    const std::uint64_t fair =
        points * form.Stride() / (std::uint64_t{4} * (threads + 1) * FinalBuckets(points));
    const std::uint64_t block = std::clamp(std::min(memory / 4 * 3 / threads / buckets, fair), kSmallestBlock,
                                           isInMemory ? kMemoryBlock : kFileBlock);
    blockRecords = Narrow(std::clamp<std::uint64_t>(block / form.Stride(), 1, mostPoints));
}

void QvrSizes::AddUp(std::uint64_t points) {
    const std::uint64_t distributed = BucketsFor(points) * BlockBytes() + readBytes;
    const std::uint64_t ordered = std::min<std::uint64_t>(mostPoints, points) * BytesPerPoint();
    const std::uint64_t stored = points * BytesPerStored();
    memoryBytes = threads * std::max(distributed, ordered) + KeptBytes(points) + (isInMemory ? stored : 0);
    // Of a bucket, one block of every thread and one of its order are not full. A place that many points
    // share is a bucket of its own.
    const std::uint64_t all = FinalBuckets(points);
    const std::uint64_t notFull = (threads + 2) * (all + (all > mostBuckets ? mostBuckets : 0));
    temporaryBytes = isInMemory ? 0 : stored + notFull * BlockBytes();
}

// Records that are read and those in their new order, with keys and numbers.
std::uint64_t QvrSizes::BytesPerPoint() const {
    return 2 * form.Stride() + kKeyBytes;
}

std::uint64_t QvrSizes::BytesPerStored() const {
    return form.Stride() + sizeof(std::uint32_t);
}

std::uint64_t QvrSizes::RoomForBuckets(std::uint64_t memory) const {
    return std::max({memory / 4 - std::min(memory / 4, entriesBytes), memory / 8, kLeastForBuckets});
}

std::uint64_t QvrSizes::KeptBytes(std::uint64_t points) const {
    return FinalBuckets(points) * kBucketBytes + entriesBytes;
}

std::uint64_t QvrSizes::FinalBuckets(std::uint64_t points) const {
    return std::max<std::uint64_t>(DivideUp(points, wantedPoints), 1);
}

std::uint64_t QvrSizes::BucketsFor(std::uint64_t points) const {
    return std::min<std::uint64_t>(FinalBuckets(points), mostBuckets);
}

}  // namespace orvex
