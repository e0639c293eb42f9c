#include "las/companion/QvrFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "las/LasRecords.h"
#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

[[noreturn]] void Fail(StringId text, const std::wstring& path,
                       std::initializer_list<std::uint64_t> numbers = {}) {
    std::vector<std::uint64_t> all(numbers);
    all.resize(2);
    throw LDataError(FormatText(Text(text), {path, all[0], all[1]}));
}

[[noreturn]] void FailToRead(const std::wstring& path, SystemError error) {
    throw LDataError(FormatText(Text(text::kInspectUnreadable), {path, SystemErrorText(error)}));
}

MappedFile OpenForReading(const std::wstring& path) {
    MappedFile file;
    if (const SystemError error = file.Open(path, true)) {
        FailToRead(path, error);
    }
    return file;
}

std::uint64_t SizeOf(const MappedFile& file, const std::wstring& path) {
    std::uint64_t size = 0;
    if (const SystemError error = file.Size(size)) {
        FailToRead(path, error);
    }
    return size;
}

/// The file's bytes from an offset to at most an end; fewer at its end.
void ReadUpTo(const MappedFile& file, std::uint64_t offset, std::uint64_t end, std::vector<std::byte>& bytes,
              const std::wstring& path) {
    bytes.resize(std::min<std::uint64_t>(bytes.size(), end - std::min(offset, end)));
    std::size_t read = 0;
    if (const SystemError error = file.ReadAt(offset, bytes, read)) {
        FailToRead(path, error);
    }
    bytes.resize(read);
}

/// Index from the first VLR.
QvrIndex ReadIndex(const MappedFile& file, const LasHeader& header, const std::wstring& path) {
    std::vector<std::byte> record(sizeof(IndexVlr));
    ReadUpTo(file, header.HeaderSize(), header.OffsetToPoints(), record, path);
    if (record.size() < las::kVlrHeaderSize || header.VlrCount() == 0 ||
        header.HeaderSize() < las::kLegacyHeaderSize) {
        Fail(text::kQvrNoIndex, path);
    }
    const VlrView vlr(record, header.HeaderSize(), false);
    if (!vlr.Is(kCompanionUserId, kIndexRecordId)) {
        Fail(text::kQvrNoIndex, path);
    }
    const std::optional<QvrIndex> index = DecodeQvrIndex(vlr.Data());
    if (!index && vlr.Data().size() == kIndexPayloadSize && QvrVersionOf(vlr.Data()) != kQvrVersion) {
        Fail(text::kQvrVersionUnknown, path, {QvrVersionOf(vlr.Data()), kQvrVersion});
    }
    if (!index) {
        Fail(text::kQvrIndexWrong, path);
    }
    return *index;
}

/// Points are read by their numbers, so that all must have whole records.
void CheckPoints(const QvrHead& head, std::uint64_t fileSize, const std::wstring& path) {
    const LasHeader header = head.Header();
    const las::PointFormatFacts* const format = las::FindPointFormat(header.PointFormat());
    if (format == nullptr || header.PointRecordLength() < format->minimumLength || header.IsCompressed() ||
        header.PointCount() != head.index.sourcePoints) {
        Fail(text::kQvrIndexWrong, path);
    }
    const std::uint64_t start = header.OffsetToPoints();
    const std::uint64_t room = fileSize < start ? 0 : (fileSize - start) / header.PointRecordLength();
    if (room < header.PointCount()) {
        Fail(text::kQvrTruncated, path, {room, header.PointCount()});
    }
}

QvrHead ReadHead(const MappedFile& file, const std::wstring& path) {
    QvrHead head;
    std::size_t read = 0;
    if (const SystemError error = file.ReadAt(0, head.block, read)) {
        FailToRead(path, error);
    }
    if (read < las::kLegacyHeaderSize || !head.Header().HasSignature()) {
        Fail(text::kQvrNoIndex, path);
    }
    head.index = ReadIndex(file, head.Header(), path);
    CheckPoints(head, SizeOf(file, path), path);
    return head;
}

/// Reads the entries of the thinned records one after the other and checks each against those before it.
class EntryReader {
  public:
    EntryReader(const MappedFile& file, const QvrHead& head, const std::wstring& path)
        : file_(file), head_(head), path_(path) {}

    std::vector<QvrEntry> Read() {
        std::uint64_t offset = head_.Header().HeaderSize() + sizeof(IndexVlr);
        for (std::uint32_t left = head_.Header().VlrCount() - 1;
             left > 0 && entries_.size() < head_.index.entryCount; --left) {
            offset += ReadRecord(offset);
        }
        if (entries_.size() != head_.index.entryCount) {
            FailAtEnd();
        }
        if (points_ != head_.Header().PointCount()) {
            Fail(text::kQvrEntryWrong, path_, {entries_.size()});
        }
        return std::move(entries_);
    }

  private:
    [[noreturn]] void FailAtEnd() const {
        Fail(text::kQvrEntriesMissing, path_, {entries_.size(), head_.index.entryCount});
    }

    /// Length of the record at an offset.
    std::uint64_t ReadRecord(std::uint64_t offset) {
        record_.resize(las::kVlrHeaderSize + std::numeric_limits<std::uint16_t>::max());
        ReadUpTo(file_, offset, head_.Header().OffsetToPoints(), record_, path_);
        if (record_.size() < las::kVlrHeaderSize + kThinnedHeadSize) {
            FailAtEnd();
        }
        const VlrView vlr(record_, offset, false);
        if (!vlr.Is(kCompanionUserId, kThinnedRecordId) || !vlr.HasData()) {
            FailAtEnd();
        }
        // Written records do not have the mark that the check asks for.
        const std::uint16_t mark = las::kVlrSignature10;
        std::memcpy(record_.data() + las::record_at::kReserved, &mark, sizeof(mark));
        const std::optional<ThinnedHead> head = CheckThinnedVlr(record_, 0);
        if (!head || head->entrySize != kThinnedEntrySize || head->value != entries_.size()) {
            FailAtEnd();
        }
        auto rest = vlr.Data().subspan(kThinnedHeadSize);
        for (std::uint32_t i = 0; i < head->count; ++i, rest = rest.subspan(kThinnedEntrySize)) {
            Add(DecodeQvrEntry(rest.first<kThinnedEntrySize>()));
        }
        return las::kVlrHeaderSize + vlr.RecordLength();
    }

    void Add(const QvrEntry& entry) {
        const QvrBox& box = head_.index.box;
        const bool isPossible = entry.first == points_ && entry.count != 0 &&
                                head_.index.CanHave(entry.count, entry.depth) &&
                                entry.generation <= kQvrLastGeneration && entry.depth <= kQvrLevels &&
                                box.Contains(entry.position);
        if (!isPossible || (!entries_.empty() && !Follows(entry, entries_.back()))) {
            Fail(text::kQvrEntryWrong, path_, {entries_.size()});
        }
        points_ += entry.count;
        entries_.push_back(entry);
    }

    bool Follows(const QvrEntry& entry, const QvrEntry& last) const {
        const QvrBox& box = head_.index.box;
        return std::pair(last.generation, box.Code(last.position)) <=
               std::pair(entry.generation, box.Code(entry.position));
    }

    const MappedFile& file_;
    const QvrHead& head_;
    const std::wstring& path_;
    std::vector<std::byte> record_;
    std::vector<QvrEntry> entries_;
    std::uint64_t points_ = 0;  // of the entries
};

bool Meet(const LasExtent& a, const LasExtent& b) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (!(a.minimum[axis] <= b.maximum[axis] && b.minimum[axis] <= a.maximum[axis])) {
            return false;
        }
    }
    return true;
}

/// Part of a box that lies in a view that it meets, 0 to 1.
double ShareOf(const LasExtent& box, const LasExtent& view) {
    double share = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double whole = box.maximum[axis] - box.minimum[axis];
        const double part =
            std::min(box.maximum[axis], view.maximum[axis]) - std::max(box.minimum[axis], view.minimum[axis]);
        if (part < whole) {  // neither flat nor without bounds
            share *= part / whole;
        }
    }
    return share;
}

/// Adds a range behind the others, joined with the last one where they touch.
void Append(std::vector<PointRange>& ranges, const PointRange& range) {
    if (!ranges.empty() && ranges.back().first + ranges.back().count == range.first) {
        ranges.back().count += range.count;
    } else {
        ranges.push_back(range);
    }
}

}  // namespace

QvrHead ReadQvrHead(const std::wstring& path) {
    return ReadHead(OpenForReading(path), path);
}

std::unique_ptr<QvrFile> QvrFile::Open(const std::wstring& path) {
    std::unique_ptr<QvrFile> qvr(new QvrFile);
    qvr->path_ = path;
    qvr->file_ = OpenForReading(path);
    qvr->head_ = ReadHead(qvr->file_, path);
    qvr->entries_ = EntryReader(qvr->file_, qvr->head_, path).Read();
    const LasHeader header = qvr->Header();
    qvr->frame_ = {header.Scale(), header.Offset(), {header.Minimum(), header.Maximum()}};
    return qvr;
}

LasExtent QvrFile::RootBox() const {
    return CoordinatesOf(head_.index.box.Cell(head_.index.box.minimum, 0));
}

LasExtent QvrFile::BoxOf(const QvrEntry& entry) const {
    return CoordinatesOf(head_.index.box.Cell(entry.position, entry.depth));
}

LasExtent QvrFile::CoordinatesOf(const QvrRawBox& cell) const {
    LasExtent box;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double a = cell.low[axis] * frame_.scale[axis] + frame_.offset[axis];
        const double b = cell.high[axis] * frame_.scale[axis] + frame_.offset[axis];
        box.minimum[axis] = std::min(a, b);  // a scale may be negative
        box.maximum[axis] = std::max(a, b);
    }
    return box;
}

std::vector<PointRange> QvrFile::Select(const LasExtent& view, std::uint64_t mostPoints) const {
    constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t mostInAll = mostPoints > kNoLimit / kMostBeside ? kNoLimit : mostPoints * kMostBeside;
    std::vector<PointRange> selected;
    std::uint64_t points = 0;
    double inView = 0;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const std::uint16_t generation = entry->generation;
        std::vector<PointRange> ranges;
        for (; entry != entries_.end() && entry->generation == generation; ++entry) {
            if (const LasExtent box = BoxOf(*entry); Meet(box, view)) {
                Append(ranges, {entry->first, entry->count});
                points += entry->count;
                inView += entry->count * ShareOf(box, view);
            }
        }
        if (inView > static_cast<double>(mostPoints) || points > mostInAll) {
            break;
        }
        for (const PointRange& range : ranges) {
            Append(selected, range);
        }
    }
    return selected;
}

std::uint64_t QvrFile::PointsPerRead() const {
    constexpr std::uint64_t kReadBytes = std::uint64_t{1} << 20U;
    return kReadBytes / RecordLength();
}

void QvrFile::Read(PointRange points, std::span<std::byte> records) const {
    std::size_t read = 0;
    const std::uint64_t offset = Header().OffsetToPoints() + points.first * RecordLength();
    if (const SystemError error = file_.ReadAt(offset, records, read)) {
        FailToRead(path_, error);
    }
    if (read < records.size()) {
        Fail(text::kQvrTruncated, path_, {points.first + read / RecordLength(), PointCount()});
    }
}

std::array<double, 3> QvrFile::PositionOf(std::span<const std::byte> record) const {
    const ByteReader reader(record);
    std::array<double, 3> position{};
    for (std::size_t axis = 0; axis < position.size(); ++axis) {
        position[axis] = reader.Read<std::int32_t>(las::point_at::kPosition + 4 * axis) * frame_.scale[axis] +
                         frame_.offset[axis];
    }
    return position;
}

std::uint8_t QvrFile::ClassificationOf(std::span<const std::byte> record) const {
    constexpr std::uint8_t kLegacyClass = 0x1F;
    const ByteReader reader(record);
    if (Header().PointFormat() < las::kFirstExtendedFormat) {
        return reader.Read<std::uint8_t>(las::point_at::kLegacyClassification) & kLegacyClass;
    }
    return reader.Read<std::uint8_t>(las::point_at::kClassification);
}

}  // namespace orvex
