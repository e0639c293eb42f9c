#include "las/companion/QvrSizes.h"

#include <algorithm>
#include <thread>

namespace orvex {
namespace {

// A bucket of so many points and its keys stay in a processor's cache.
constexpr std::uint64_t kHandyPoints = std::uint64_t{1} << 17U;
constexpr std::uint64_t kMostPoints = (std::uint64_t{1} << 24U) - 1;
// Beside a point itself: its key twice, its generation, its place in the order.
constexpr std::uint64_t kBytesPerPoint = 64;
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
    // The blocks that are filled while points are distributed, then the buckets that are ordered.
    const std::uint64_t perThread = settings.memory / 4 * 3 / sizes.threads;
    const std::uint64_t stride = sizes.form.Stride();
    const std::uint64_t perPoint = 2 * stride + kBytesPerPoint;
    sizes.mostPoints = Narrow(std::clamp<std::uint64_t>(perThread / perPoint, 64, kMostPoints));
    sizes.wantedPoints = Narrow(std::min<std::uint64_t>(sizes.mostPoints / 3 * 2, kHandyPoints));
    sizes.mostBuckets = Narrow(std::clamp<std::uint64_t>(perThread / kSmallestBlock, 8, 1U << 16U));
    const std::uint64_t buckets = sizes.BucketsFor(points);
    const std::uint64_t usual =
        sizes.threads *
        std::max(buckets * kMemoryBlock, std::min<std::uint64_t>(sizes.wantedPoints, points) * perPoint);
    const std::uint64_t perStored = stride + sizeof(std::uint32_t);
    sizes.isInMemory = settings.memory > usual && points <= (settings.memory - usual) / perStored;
    if (sizes.isInMemory) {
        const std::uint64_t left = (settings.memory - points * perStored) / sizes.threads / perPoint;
        sizes.mostPoints = Narrow(std::clamp<std::uint64_t>(left, sizes.wantedPoints, sizes.mostPoints));
    }
    const std::uint64_t block =
        std::clamp(perThread / buckets, kSmallestBlock, sizes.isInMemory ? kMemoryBlock : kFileBlock);
    sizes.blockRecords = Narrow(std::clamp<std::uint64_t>(block / stride, 1, sizes.mostPoints));
    const std::uint64_t blocks = sizes.threads * buckets * sizes.BlockBytes();
    const std::uint64_t ordered =
        sizes.threads * std::min<std::uint64_t>(sizes.mostPoints, points) * perPoint;
    sizes.memoryBytes = std::max(blocks, ordered) + (sizes.isInMemory ? points * perStored : 0);
    // Blocks that are not full: those of every thread when a distribution ends, and one of each bucket's
    // order.
    sizes.temporaryBytes = sizes.isInMemory ? 0 : points * perStored + 2 * blocks;
    return sizes;
}

std::uint64_t QvrSizes::BucketsFor(std::uint64_t points) const {
    return std::clamp<std::uint64_t>(DivideUp(points, wantedPoints), 1, mostBuckets);
}

}  // namespace orvex
