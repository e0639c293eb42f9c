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
    sizes.ChooseBuckets(settings.memory);
    sizes.ChoosePlace(points, settings.memory);
    sizes.AddUp(points);
    return sizes;
}

// A thread has the blocks that it fills while points are distributed, and later the bucket that it orders.
void QvrSizes::ChooseBuckets(std::uint64_t memory) {
    const std::uint64_t perThread = memory / 4 * 3 / threads;
    mostPoints = Narrow(std::clamp<std::uint64_t>(perThread / BytesPerPoint(), 64, kMostPoints));
    wantedPoints = Narrow(std::min<std::uint64_t>(mostPoints / 3 * 2, kHandyPoints));
    mostBuckets = Narrow(std::clamp<std::uint64_t>(perThread / kSmallestBlock, 8, kMostBuckets));
}

void QvrSizes::ChoosePlace(std::uint64_t points, std::uint64_t memory) {
    const std::uint64_t buckets = BucketsFor(points);
    const std::uint64_t ordered = std::min<std::uint64_t>(wantedPoints, points) * BytesPerPoint();
    const std::uint64_t working = threads * std::max(buckets * kMemoryBlock, ordered);
    isInMemory = memory > working && points <= (memory - working) / BytesPerStored();
    if (isInMemory) {
        const std::uint64_t left = (memory - points * BytesPerStored()) / threads / BytesPerPoint();
        mostPoints = Narrow(std::clamp<std::uint64_t>(left, wantedPoints, mostPoints));
    }
    // Those that are not full shall not take more than a quarter of the space.
    const std::uint64_t fair = points * form.Stride() / (4 * (threads + 1) * buckets);
    const std::uint64_t block = std::clamp(std::min(memory / 4 * 3 / threads / buckets, fair), kSmallestBlock,
                                           isInMemory ? kMemoryBlock : kFileBlock);
    blockRecords = Narrow(std::clamp<std::uint64_t>(block / form.Stride(), 1, mostPoints));
}

void QvrSizes::AddUp(std::uint64_t points) {
    const std::uint64_t blocks = BucketsFor(points) * BlockBytes();
    const std::uint64_t ordered = threads * std::min<std::uint64_t>(mostPoints, points) * BytesPerPoint();
    const std::uint64_t stored = points * BytesPerStored();
    memoryBytes = std::max(threads * blocks, ordered) + (isInMemory ? stored : 0);
    // Of a bucket, one block of every thread and one of its order are not full.
    temporaryBytes = isInMemory ? 0 : stored + (threads + 1) * blocks;
}

// Records that are read and those in their new order, with keys and numbers.
std::uint64_t QvrSizes::BytesPerPoint() const {
    return 2 * form.Stride() + kKeyBytes;
}

std::uint64_t QvrSizes::BytesPerStored() const {
    return form.Stride() + sizeof(std::uint32_t);
}

std::uint64_t QvrSizes::BucketsFor(std::uint64_t points) const {
    return std::clamp<std::uint64_t>(DivideUp(points, wantedPoints), 1, mostBuckets);
}

}  // namespace orvex
