#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "las/companion/QvrBuilder.h"
#include "las/companion/QvrFormat.h"

namespace orvex {

/// Form of a stored point: its record, and in file order its number behind it.
struct QvrRecordForm {
    std::size_t recordLength = 0;
    bool isRandom = true;
    std::uint64_t seed = 0;

    std::size_t Stride() const { return recordLength + (isRandom ? 0 : sizeof(std::uint64_t)); }
    static QvrPosition PositionOf(const std::byte* stored) {
        QvrPosition position;
        std::memcpy(position.data(), stored, sizeof(position));
        return position;
    }
    std::uint64_t PriorityOf(const std::byte* stored) const {
        if (isRandom) {
            return QvrHash({stored, recordLength}, seed);
        }
        std::uint64_t number = 0;
        std::memcpy(&number, stored + recordLength, sizeof(number));
        return number;
    }
};

/// Amounts that follow from the number of points and the settings.
struct QvrSizes {
    QvrRecordForm form;
    unsigned threads = 1;
    std::uint32_t mostPoints = 0;    ///< in a bucket; below 2^24
    std::uint32_t wantedPoints = 0;  ///< in a bucket
    std::uint32_t mostBuckets = 0;   ///< of one distribution
    std::uint32_t blockRecords = 1;  ///< at most mostPoints
    std::uint64_t readBytes = 0;     ///< that a thread reads at once; at least one record
    std::uint64_t mostEntries = 0;
    std::uint64_t entriesBytes = 0;  ///< in memory, where the points lie on a surface
    bool isInMemory = true;
    std::uint64_t temporaryBytes = 0;
    std::uint64_t memoryBytes = 0;

    static QvrSizes For(std::uint64_t points, std::size_t recordLength, const QvrSettings& settings);
    std::size_t BlockBytes() const { return blockRecords * form.Stride(); }
    /// Buckets that points are best distributed over.
    std::uint64_t BucketsFor(std::uint64_t points) const;

  private:
    void ChooseThreads(std::uint64_t points, std::uint64_t memory);
    void ChooseBuckets(std::uint64_t points, std::uint64_t memory);
    void ChoosePlace(std::uint64_t points, std::uint64_t memory);
    void AddUp(std::uint64_t points);
    std::uint64_t RoomForBuckets(std::uint64_t memory) const;
    std::uint64_t KeptBytes(std::uint64_t points) const;  // of buckets and entries, until all is ordered
    std::uint64_t FinalBuckets(std::uint64_t points) const;
    std::uint64_t BytesPerPoint() const;   // that is being ordered
    std::uint64_t BytesPerStored() const;  // in the buckets, with its order
};

}  // namespace orvex
