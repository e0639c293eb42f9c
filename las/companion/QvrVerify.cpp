#include "las/companion/QvrVerify.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "las/companion/QvrSource.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 20U;
constexpr std::uint64_t kFirstSeed = 1;
constexpr std::uint64_t kSecondSeed = 2;

PointSum SumOf(std::span<const std::byte> records, std::size_t length) {
    PointSum sum;
    for (; records.size() >= length; records = records.subspan(length)) {
        const auto record = records.first(length);
        sum += {QvrHash(record, kFirstSeed), QvrHash(record, kSecondSeed)};
    }
    return sum;
}

QvrPosition RawPosition(std::span<const std::byte> record) {
    const ByteReader reader(record);
    return {reader.Read<std::int32_t>(0), reader.Read<std::int32_t>(4), reader.Read<std::int32_t>(8)};
}

class PointVerifier {
  public:
    PointVerifier(const QvrFile& qvr, Kst::ProgressIf& progress) : qvr_(qvr), progress_(progress) {}

    PointSum Run() {
        progress_.SetRange(qvr_.PointCount());
        for (std::size_t i = 0; i < qvr_.Entries().size(); ++i) {
            if (!VerifyEntry(i)) {
                return {};
            }
        }
        return sum_;
    }

  private:
    /// False once the user has asked to stop.
    bool VerifyEntry(std::size_t number) {
        const QvrEntry& entry = qvr_.Entries()[number];
        for (std::uint64_t done = 0; done < entry.count;) {
            if (progress_.IsCancelled()) {
                return false;
            }
            const PointRange part{entry.first + done, std::min(qvr_.PointsPerRead(), entry.count - done)};
            progress_.SetPosition(part.first);
            records_.resize(part.count * qvr_.RecordLength());
            qvr_.Read(part, records_);
            sum_ += SumOf(records_, qvr_.RecordLength());
            for (std::uint64_t i = 0; i < part.count; ++i) {
                VerifyPoint(number, part.first + i,
                            RawPosition(std::span(records_).subspan(i * qvr_.RecordLength())));
            }
            done += part.count;
        }
        return true;
    }

    void VerifyPoint(std::size_t number, std::uint64_t point, const QvrPosition& position) {
        const QvrEntry& entry = qvr_.Entries()[number];
        const QvrBox& box = qvr_.Index().box;
        const auto shift = 3 * (kQvrLevels - entry.depth);
        if (!box.Contains(position) || box.Code(position) >> shift != box.Code(entry.position) >> shift ||
            (point == entry.first && position != entry.position)) {
            throw LDataError(FormatText(Text(text::kQvrPointOutside), {qvr_.Path(), point, number}));
        }
        const std::pair place(entry.generation, box.Code(position));
        if (place < last_) {
            throw LDataError(FormatText(Text(text::kQvrPointOrder), {qvr_.Path(), point}));
        }
        last_ = place;
    }

    const QvrFile& qvr_;
    Kst::ProgressIf& progress_;
    std::vector<std::byte> records_;
    std::pair<std::uint16_t, std::uint64_t> last_;  // generation and cell of the point before
    PointSum sum_;
};

/// Adds up points on several threads and reports from the one that made it.
class Adder {
  public:
    Adder(const QvrSource& source, Kst::ProgressIf& progress)
        : length_(source.RecordLength()), progress_(progress) {
        progress_.SetRange(source.Points());
    }

    /// False once the user has asked to stop.
    bool Add(std::span<const std::byte> records) {
        const PointSum sum = SumOf(records, length_);
        points_ += records.size() / length_;
        if (std::this_thread::get_id() == thread_) {
            progress_.SetPosition(points_);
            isCancelled_ = isCancelled_ || progress_.IsCancelled();
        }
        const std::lock_guard guard(lock_);
        sum_ += sum;
        return !isCancelled_;
    }

    PointSum Sum() const { return isCancelled_ ? PointSum() : sum_; }

  private:
    const std::size_t length_;
    Kst::ProgressIf& progress_;
    const std::thread::id thread_ = std::this_thread::get_id();
    std::atomic<std::uint64_t> points_ = 0;
    std::atomic<bool> isCancelled_ = false;
    std::mutex lock_;
    PointSum sum_;
};

void AddLasPoints(const QvrSource& source, Adder& adder) {
    const std::uint64_t most = std::max<std::uint64_t>(kBlock / source.RecordLength(), 1);
    std::vector<std::byte> records;
    for (std::uint64_t first = 0; first < source.Points(); first += most) {
        records.resize(std::min(most, source.Points() - first) * source.RecordLength());
        source.ReadPoints(first, records);
        if (!adder.Add(records)) {
            return;
        }
    }
}

void AddLazPoints(const QvrSource& source, Adder& adder) {
    std::wstring reason;
    const auto sink = [&](std::uint64_t, std::span<const std::byte> records) { return adder.Add(records); };
    if (!OrvexUtilities::LAZReadPoints(source.Path(), 0, sink, reason) && !reason.empty()) {
        throw LDataError(reason);
    }
}

}  // namespace

PointSum VerifyQvrPoints(const QvrFile& qvr, Kst::ProgressIf& progress) {
    return PointVerifier(qvr, progress).Run();
}

PointSum SumOfPoints(const std::wstring& path, Kst::ProgressIf& progress) {
    const QvrSource source(path);
    Adder adder(source, progress);
    source.IsCompressed() ? AddLazPoints(source, adder) : AddLasPoints(source, adder);
    return adder.Sum();
}

}  // namespace orvex
