#include "las/companion/QvrBuilder.h"

#include <algorithm>
#include <atomic>
#include <limits>

#include "las/companion/QvrBuckets.h"
#include "las/companion/QvrFile.h"
#include "las/companion/QvrOrdering.h"
#include "las/companion/QvrSource.h"
#include "las/companion/QvrStore.h"
#include "las/companion/QvrWork.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/MappedFile.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kCopyBytes = std::uint64_t{1} << 20U;
// Written at most before the drive has all of it, so that the end does not wait for gigabytes.
constexpr std::uint64_t kMostUnsynced = std::uint64_t{256} << 20U;

/// The settings without anything left open.
QvrSettings Settled(QvrSettings settings) {
    settings.factor = std::max<std::uint16_t>(1, settings.factor);
    if (!settings.randomOrder) {
        settings.randomOrder = !FileExists(FromPath(SharedTemporaryFolder() / "NoRandomizeQVR.txt"));
    }
    return settings;
}

/// Bytes that the records of so many entries and the index take.
std::uint64_t OwnRecordBytes(std::uint64_t entries) {
    const auto count = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(entries, std::numeric_limits<std::uint32_t>::max()));
    return sizeof(IndexVlr) + ThinnedBytesNeeded(count, kThinnedEntrySize);
}

void Require(const std::wstring& target, SystemError error) {
    if (error != 0) {
        throw LDataError(FormatText(Text(text::kLazCannotWrite), {target, SystemErrorText(error)}));
    }
}

/// One building of a companion; used once.
class Build {
  public:
    Build(const QvrPlan& plan, const QvrSettings& settings, Kst::ProgressIf& progress)
        : plan_(plan),
          settings_(settings),
          source_(plan.source),
          sizes_(QvrSizes::For(source_.Points(), source_.RecordLength(), settings)),
          store_(sizes_.BlockBytes(), sizes_.isInMemory ? std::wstring() : plan.target),
          work_(sizes_.threads, progress),
          output_(plan.target) {
        Require(output_.CreationError());
    }

    void Run() {
        QvrBuckets points(source_, sizes_, store_, work_);
        std::vector<QvrBucket> buckets = points.Make();
        source_.RequireUnchanged();
        QvrIndex index = source_.Index();
        index.factor = settings_.factor;
        index.seed = settings_.seed;
        index.isRandom = sizes_.form.isRandom;
        index.box = points.Box();
        QvrOrdering ordering(points, std::move(buckets), sizes_, store_, work_);
        work_.Begin(QvrPhase::Ordering, plan_.source, source_.Points());
        ordering.Run(index.MostPerEntry());
        work_.Begin(QvrPhase::Writing, plan_.source, source_.Points());
        WriteHead(index, ordering.Entries());
        WritePoints(ordering);
        WritePieces(EvlrsAt(), source_.KeptEvlrs());
        source_.RequireUnchanged();
        Finish();
    }

  private:
    void WriteHead(QvrIndex& index, const std::vector<QvrEntry>& entries) {
        const std::uint64_t ownBytes = OwnRecordBytes(entries.size());
        pointsAt_ = source_.KeptHeadBytes() + ownBytes;
        if (pointsAt_ > std::numeric_limits<std::uint32_t>::max()) {
            throw LDataError(FormatText(Text(text::kQvrTooManyEntries), {GroupedNumber(entries.size())}));
        }
        index.entryCount = static_cast<std::uint32_t>(entries.size());
        const IndexVlr indexRecord = EncodeQvrIndex(index);
        const auto count =
            static_cast<std::uint32_t>(1 + ThinnedVlrCount(index.entryCount, kThinnedEntrySize));
        const std::vector<std::byte> header = source_.CompanionHeader(ownBytes, count);
        Require(file_.Open(output_.Path(), false));
        Require(file_.Reserve(EvlrsAt() + source_.KeptEvlrBytes()));
        Require(file_.WriteAt(0, header));
        Require(file_.WriteAt(header.size(), indexRecord));
        Require(file_.WriteAt(header.size() + indexRecord.size(), EncodeQvrEntries(entries)));
        WritePieces(header.size() + ownBytes, source_.KeptVlrs());
    }

    std::uint64_t EvlrsAt() const { return pointsAt_ + source_.Points() * source_.RecordLength(); }

    void WritePoints(const QvrOrdering& ordering) {
        const std::size_t length = source_.RecordLength();
        const std::vector<QvrOrdering::Counts> firsts = ordering.FirstPoints();
        QvrPool<QvrOrdering::Sorted> spaces;
        work_.Run(ordering.BucketCount(), [&](std::uint64_t bucket) {
            auto sorted = spaces.Take();
            ordering.Sort(bucket, *sorted);
            std::span<const std::byte> left = sorted->records;
            for (std::size_t generation = 0; generation < QvrOrdering::kGenerations; ++generation) {
                const auto bytes = left.first(sorted->counts[generation] * length);
                if (!bytes.empty()) {
                    Require(file_.WriteAt(pointsAt_ + firsts[bucket][generation] * length, bytes));
                }
                left = left.subspan(bytes.size());
            }
            SyncSometimes(sorted->records.size());
            work_.Done(sorted->order.size());
            spaces.Give(std::move(sorted));
        });
    }

    void SyncSometimes(std::uint64_t written) {
        const std::uint64_t before = written_.fetch_add(written);
        if (before / kMostUnsynced != (before + written) / kMostUnsynced) {
            Require(file_.Sync());
        }
    }

    void WritePieces(std::uint64_t at, const std::vector<QvrSource::Piece>& pieces) {
        std::vector<std::byte> block;
        for (const QvrSource::Piece& piece : pieces) {
            for (std::uint64_t done = 0; done < piece.length; done += block.size()) {
                block.resize(std::min(kCopyBytes, piece.length - done));
                work_.Run(1, [&](std::uint64_t) {
                    source_.ReadPiece(piece, done, block);
                    Require(file_.WriteAt(at + done, block));
                    SyncSometimes(block.size());
                });
            }
            at += piece.length;
        }
    }

    void Finish() {
        work_.Run(1, [&](std::uint64_t) { Require(file_.Sync()); });
        file_.Close();
        QvrFile::Open(output_.Path());  // throws if what was written is no companion
        Require(settings_.replaceExisting ? output_.Commit() : CommitNew());
    }

    /// A file that has appeared at the target meanwhile stays.
    SystemError CommitNew() {
        bool isTaken = false;
        const SystemError error = output_.CommitTo(plan_.target, isTaken);
        if (isTaken) {
            throw LDataError(FormatText(Text(text::kCompanionExists), {plan_.target}));
        }
        return error;
    }

    void Require(SystemError error) const { orvex::Require(plan_.target, error); }

    const QvrPlan& plan_;
    const QvrSettings& settings_;
    QvrSource source_;
    QvrSizes sizes_;
    QvrStore store_;
    QvrWork work_;
    TemporaryFile output_;
    MappedFile file_;  // closed before the temporary file is removed
    std::uint64_t pointsAt_ = 0;
    std::atomic<std::uint64_t> written_ = 0;
};

/// Throws if a file cannot be put at the target, where the system can tell before one is written.
void RequireWritable(const std::wstring& target) {
    const FileKind kind = KindOf(target);
    if (kind != FileKind::Missing && kind != FileKind::File) {
        Require(target, MappedFile().Open(target, false));
    }
    const std::wstring folder = FolderOf(target);
    if (!CanCreateFilesIn(ToPath(folder.empty() ? L"." : folder))) {
        Require(target, TemporaryFile(target).CreationError());
    }
}

void RequireSpace(const QvrPlan& plan) {
    const std::wstring folder = FolderOf(plan.target);
    const auto free = FreeSpaceIn(folder.empty() ? L"." : folder);
    const double needed = static_cast<double>(plan.targetBytes) + static_cast<double>(plan.temporaryBytes);
    if (free && needed > static_cast<double>(*free)) {
        throw LDataError(
            FormatText(Text(text::kQvrDiskFull),
                       {plan.target, needed * 1e-6, static_cast<double>(plan.temporaryBytes) * 1e-6,
                        static_cast<double>(*free) * 1e-6}));
    }
}

}  // namespace

std::wstring QvrPathOf(const std::wstring& source) {
    return WithExtension(source, L".qvr");
}

QvrPlan PlanQvr(const std::wstring& source, const QvrSettings& settings) {
    QvrPlan plan{source, settings.target.empty() ? QvrPathOf(source) : settings.target};
    if (IsSameFile(plan.source, plan.target) || EqualNoCase(plan.source, plan.target)) {
        throw LDataError(FormatText(Text(text::kQvrIsCompanion), {source}));
    }
    const QvrSource file(source);
    if (!settings.replaceExisting && FileExists(plan.target)) {
        throw LDataError(FormatText(Text(text::kCompanionExists), {plan.target}));
    }
    RequireWritable(plan.target);
    const QvrSettings settled = Settled(settings);
    const QvrSizes sizes = QvrSizes::For(file.Points(), file.RecordLength(), settled);
    plan.points = file.Points();
    plan.targetBytes = file.KeptHeadBytes() + OwnRecordBytes(sizes.mostEntries) +
                       file.Points() * file.RecordLength() + file.KeptEvlrBytes();
    plan.temporaryBytes = sizes.temporaryBytes;
    plan.memoryBytes = sizes.memoryBytes;
    RequireSpace(plan);
    return plan;
}

bool BuildQvr(const QvrPlan& plan, const QvrSettings& settings, Kst::ProgressIf& progress) {
    const QvrSettings settled = Settled(settings);
    LogInfo(*settled.randomOrder ? L"LASFile:: Using Random QVR" : L"LASFile:: NOT using Random QVR");
    try {
        Build(plan, settled, progress).Run();
        return true;
    } catch (const QvrCancelled&) {
        return false;
    }
}

}  // namespace orvex
