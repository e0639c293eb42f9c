#include "las/companion/QvrVerify.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "las/LASFile.h"
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
            if (progress_.IsCancelled()) {
                return {};
            }
            progress_.SetPosition(qvr_.Entries()[i].first);
            VerifyEntry(i);
        }
        return sum_;
    }

  private:
    void VerifyEntry(std::size_t number) {
        const QvrEntry& entry = qvr_.Entries()[number];
        const std::uint64_t most = std::max<std::uint64_t>(kBlock / qvr_.RecordLength(), 1);
        for (std::uint64_t done = 0; done < entry.count;) {
            const PointRange part{entry.first + done, std::min(most, entry.count - done)};
            records_.resize(part.count * qvr_.RecordLength());
            qvr_.Read(part, records_);
            sum_ += SumOf(records_, qvr_.RecordLength());
            for (std::uint64_t i = 0; i < part.count; ++i) {
                VerifyPoint(number, part.first + i,
                            RawPosition(std::span(records_).subspan(i * qvr_.RecordLength())));
            }
            done += part.count;
        }
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
    Adder(const LasHeader& header, Kst::ProgressIf& progress)
        : length_(header.PointRecordLength()), progress_(progress) {
        progress_.SetRange(header.PointCount());
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

PointSum SumOfLas(const LASFile& las, const std::wstring& path, Kst::ProgressIf& progress) {
    const std::uint64_t length = las.Header().PointRecordLength();
    if (length == 0) {
        return {};
    }
    Adder adder(las.Header(), progress);
    MappedFile file;
    SystemError error = file.Open(path, true);
    std::vector<std::byte> records(std::max(kBlock / length, std::uint64_t{1}) * length);
    const std::uint64_t start = las.Header().OffsetToPoints();
    for (std::uint64_t point = 0; error == 0 && point < las.GetPointCount();) {
        const std::uint64_t left = las.GetPointCount() - point;
        const auto part = std::span(records).first(std::min(left, records.size() / length) * length);
        std::size_t read = 0;
        error = file.ReadAt(start + point * length, part, read);
        if (error == 0 && (read < part.size() || !adder.Add(part))) {
            break;
        }
        point += part.size() / length;
    }
    if (error != 0) {
        throw LDataError(FormatText(Text(text::kInspectUnreadable), {path, SystemErrorText(error)}));
    }
    return adder.Sum();
}

PointSum SumOfLaz(const std::wstring& path, Kst::ProgressIf& progress) {
    std::string head;
    std::wstring reason;
    if (!OrvexUtilities::LAZReadHead(path, head, reason)) {
        throw LDataError(reason);
    }
    Adder adder(LasHeader(std::as_bytes(std::span(head))), progress);
    const auto sink = [&](std::uint64_t, std::span<const std::byte> records) { return adder.Add(records); };
    if (!OrvexUtilities::LAZReadPoints(path, 0, sink, reason) && !reason.empty()) {
        throw LDataError(reason);
    }
    return adder.Sum();
}

}  // namespace

PointSum VerifyQvrPoints(const QvrFile& qvr, Kst::ProgressIf& progress) {
    return PointVerifier(qvr, progress).Run();
}

PointSum SumOfPoints(const std::wstring& path, Kst::ProgressIf& progress) {
    const auto las = LASFile::Open(path, true, true);
    return las->Header().IsCompressed() ? SumOfLaz(path, progress) : SumOfLas(*las, path, progress);
}

}  // namespace orvex
