#include "las/LasValidate.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <tuple>

#include "crs/ExtentFindings.h"
#include "las/LASFile.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace at = las::at;

std::uint16_t SmallestHeaderSize(int versionCode) {
    const las::VersionFacts* const version = las::FindVersion(versionCode);
    return version == nullptr ? las::kLegacyHeaderSize : version->headerSize;
}

// The lists of records in the report of a file.
constexpr const char* kVlrs = "/las/vlrs";
constexpr const char* kEvlrs = "/las/evlrs";

class Validator {
  public:
    explicit Validator(const LASFile& file) : file_(file), header_(file.Header()) {}

    std::vector<Finding> Run() {
        if (!header_.HasSignature()) {
            Add(las_finding::kSignatureMissing, 0, {file_.FileName()});
        }
        CheckVersion();
        CheckLayout();
        CheckPointFormat();
        if (file_.HasUnreadRecords()) {
            Add(las_finding::kRecordsNotRead, at::kVlrCount,
                {file_.GetVLRs().size(), header_.VlrCount(), file_.GetEVLRs().size(), header_.EvlrCount()});
        } else {
            CheckExtraBytes();
            CheckRecordCounts();
        }
        CheckScale();
        CheckExtent();
        CheckCreationDate();
        CheckPointCount();
        CheckReturns();
        CheckWaveform();
        CheckVlrs();
        CheckEvlrs();
        if (!file_.HasProjectionRecords() && !file_.HasUnreadRecords()) {
            Add(las_finding::kNoCrs, at::kVlrCount);
        }
        SortFindings(findings_);
        return std::move(findings_);
    }

  private:
    void Add(const FindingKind& kind, std::uint64_t offset, std::initializer_list<FormatArg> arguments = {}) {
        findings_.push_back(FoundAt(offset, MakeFinding(kind, arguments)));
    }

    /// A finding about a record; `list`: the records of its kind, in the report.
    template <typename Record>
    void AddOfRecord(const FindingKind& kind, const char* list, std::size_t index, const Record& record,
                     std::initializer_list<FormatArg> arguments) {
        Add(kind, record.FileOffset(), arguments);
        findings_.back().where.member = list;
        findings_.back().where.index = index;
    }

    void CheckVersion() {
        if (file_.GetVersionCode() < 0) {
            Add(las_finding::kVersionUnknown, at::kVersionMajor,
                {static_cast<unsigned>(header_.VersionMajor()),
                 static_cast<unsigned>(header_.VersionMinor())});
        } else if (file_.GetVersionCode() == las::kLas20) {
            Add(las_finding::kVersion20, at::kVersionMajor);
        }
    }

    void CheckLayout() {
        const std::uint16_t smallest = SmallestHeaderSize(file_.GetVersionCode());
        if (header_.HeaderSize() < smallest) {
            Add(header_.HeaderSize() < las::kLegacyHeaderSize ? las_finding::kHeaderTooShort
                                                              : las_finding::kHeaderShortForVersion,
                at::kHeaderSize, {header_.HeaderSize(), smallest});
        }
        if (header_.OffsetToPoints() < std::max(header_.HeaderSize(), las::kLegacyHeaderSize)) {
            Add(las_finding::kPointsInsideHeader, at::kOffsetToPoints,
                {header_.OffsetToPoints(), header_.HeaderSize()});
        }
        if (header_.OffsetToPoints() > file_.FileSize()) {
            Add(las_finding::kPointsBeyondEnd, at::kOffsetToPoints,
                {header_.OffsetToPoints(), file_.FileSize()});
        }
    }

    void CheckPointFormat() {
        const las::PointFormatFacts* facts = las::FindPointFormat(header_.PointFormat());
        if (facts == nullptr) {
            Add(las_finding::kPointFormatUnknown, at::kPointFormat, {header_.PointFormat()});
        } else if (header_.PointRecordLength() < facts->minimumLength) {
            Add(las_finding::kRecordTooShort, at::kPointRecordLength,
                {header_.PointFormat(), facts->minimumLength, header_.PointRecordLength()});
        }
        const las::VersionFacts* const version = las::FindVersion(file_.GetVersionCode());
        if (facts != nullptr && version != nullptr && header_.PointFormat() > version->lastPointFormat) {
            Add(las_finding::kFormatOfLaterVersion, at::kPointFormat, {header_.PointFormat(), version->name});
        }
        if (file_.GetVersionCode() == las::kLas14 && facts != nullptr && !header_.HasWktBit() &&
            header_.PointFormat() >= las::kFirstExtendedFormat) {
            Add(las_finding::kWktBitMissing, at::kGlobalEncoding, {header_.PointFormat()});
        }
    }

    // Records of other makers with the same id are decoded as descriptors too, but explain nothing.
    bool HasForeignDescriptors() const {
        return std::ranges::any_of(file_.GetVLRs(), [](const VlrView& vlr) {
            return vlr.RecordId() == las::kExtraBytesRecordId && vlr.UserId() != las::kSpecUserId;
        });
    }

    void CheckExtraBytes() {
        const las::PointFormatFacts* facts = las::FindPointFormat(header_.PointFormat());
        if (facts == nullptr || header_.PointRecordLength() < facts->minimumLength ||
            HasForeignDescriptors()) {
            return;
        }
        const std::size_t bytes = header_.PointRecordLength() - facts->minimumLength;
        std::size_t described = 0;
        for (const ExtraBytesAttribute& attribute : file_.GetExtraBytes().Attributes()) {
            described += attribute.size;
        }
        if (described < bytes) {
            Add(las_finding::kExtraBytesUnexplained, at::kPointRecordLength, {bytes - described});
        } else if (described > bytes) {
            Add(las_finding::kExtraBytesBeyondRecord, at::kPointRecordLength, {described, bytes});
        }
    }

    void CheckScale() {
        const auto scale = header_.Scale();
        const auto offset = header_.Offset();
        const auto zero = AxesWhere(3, [&](std::size_t axis) { return scale[axis] == 0; });
        if (!zero.empty()) {
            Add(las_finding::kScaleZero, at::kScale, {zero});
        }
        const auto notFinite = AxesWhere(
            3, [&](std::size_t axis) { return !std::isfinite(scale[axis]) || !std::isfinite(offset[axis]); });
        if (!notFinite.empty()) {
            Add(las_finding::kScaleNotFinite, at::kScale, {notFinite});
        }
    }

    // The extent of a file without points can be anything.
    void CheckExtent() {
        if (header_.PointCount() == 0) {
            return;
        }
        const auto low = header_.Minimum();
        const auto high = header_.Maximum();
        const auto notFinite = AxesWhere(
            3, [&](std::size_t axis) { return !std::isfinite(low[axis]) || !std::isfinite(high[axis]); });
        if (!notFinite.empty()) {
            Add(las_finding::kExtentNotFinite, at::kMaximum, {notFinite});
        }
        const auto inverted = AxesWhere(3, [&](std::size_t axis) { return low[axis] > high[axis]; });
        if (!inverted.empty()) {
            Add(las_finding::kExtentInverted, at::kMaximum, {inverted});
        }
        const auto beyond = AxesWhere(3, [&](std::size_t axis) {
            return !CanBeStored(low[axis], axis) || !CanBeStored(high[axis], axis);
        });
        if (!beyond.empty()) {
            Add(las_finding::kExtentBeyondScale, at::kMaximum, {beyond});
        }
    }

    // True if a coordinate is a 32-bit number of steps, give or take one for rounding; also where the header
    // is no number, which is a finding of its own.
    bool CanBeStored(double coordinate, std::size_t axis) const {
        constexpr double kMostSteps = 2147483649.0;
        const double steps = (coordinate - header_.Offset()[axis]) / header_.Scale()[axis];
        return !std::isfinite(steps) || std::abs(steps) <= kMostSteps;
    }

    // A day of grace for time zones.
    void CheckCreationDate() {
        using namespace std::chrono;
        const sys_days tomorrow = floor<days>(system_clock::now()) + days(1);
        const auto date = header_.CreationDate();
        if (header_.IsCreationDateImpossible()) {
            Add(las_finding::kDateImpossible, at::kCreationDay,
                {header_.CreationDay(), header_.CreationYear()});
        } else if (date && sys_days(*date) > tomorrow) {
            Add(las_finding::kCreatedInFuture, at::kCreationDay,
                {header_.CreationDay(), header_.CreationYear()});
        }
    }

    // Upper limit of the point data: the start of the EVLRs or the waveform data, else the end of the file.
    std::uint64_t PointsLimit() const {
        std::uint64_t limit = file_.FileSize();
        const auto endBefore = [&](std::uint64_t start) {
            if (start >= header_.OffsetToPoints()) {
                limit = std::min(limit, start);
            }
        };
        if (file_.GetVersionCode() == las::kLas14 && header_.EvlrCount() > 0) {
            endBefore(header_.EvlrStart());
        }
        if (header_.HasInternalWaveform()) {
            endBefore(header_.WaveformStart());
        }
        return limit;
    }

    void CheckPointCount() {
        const std::uint64_t count = header_.PointCount();
        const bool is14 = file_.GetVersionCode() == las::kLas14;
        if (count == 0) {
            Add(las_finding::kNoPoints, is14 ? at::kPointCount : at::kLegacyPointCount);
        }
        if (is14 && header_.LegacyPointCount() != 0 && header_.LegacyPointCount() != count) {
            Add(las_finding::kLegacyCount, at::kLegacyPointCount, {count, header_.LegacyPointCount()});
        }
        // The size of compressed points does not follow from their count.
        if (header_.PointRecordLength() != 0 && !header_.IsCompressed() &&
            header_.OffsetToPoints() <= file_.FileSize()) {
            CheckPointsAgainstSize(count, PointsLimit() - header_.OffsetToPoints());
        }
    }

    void CheckPointsAgainstSize(std::uint64_t count, std::uint64_t bytes) {
        const std::uint64_t held = bytes / header_.PointRecordLength();
        if (held < count) {
            Add(count - held == 1 ? las_finding::kPointTruncated : las_finding::kPointsTruncated,
                header_.OffsetToPoints(), {count - held, count, held});
            return;
        }
        const std::uint64_t end = header_.OffsetToPoints() + count * header_.PointRecordLength();
        if (held > count) {
            Add(las_finding::kPointCountTooSmall, end, {count, held});
        } else if (bytes % header_.PointRecordLength() != 0) {
            Add(las_finding::kBytesAfterPoints, end, {bytes % header_.PointRecordLength()});
        }
    }

    // Counts that are all 0 were not filled in. Those of the first five returns may leave out later ones.
    void CheckReturns() {
        std::uint64_t sum = 0;
        for (int number = 1; number <= header_.ReturnCount(); ++number) {
            constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
            sum += std::min(header_.PointsOfReturn(number), kMost - sum);
        }
        const std::uint64_t count = header_.PointCount();
        const bool mayHaveMore =
            sum < count && header_.ReturnCount() == 5 && header_.PointsOfReturn(header_.ReturnCount()) > 0;
        if (sum != 0 && sum != count && !mayHaveMore) {
            Add(las_finding::kReturns,
                file_.GetVersionCode() == las::kLas14 ? at::kPointsByReturn : at::kLegacyPointsByReturn,
                {sum, count});
        }
    }

    // Older versions leave the bits unused, and their header ends before the start.
    void CheckWaveform() {
        if (file_.GetVersionCode() < las::kLas13) {
            return;
        }
        const bool isExternal = header_.HasExternalWaveform();
        if (isExternal && header_.HasInternalWaveform()) {
            Add(las_finding::kWaveformBothBits, at::kGlobalEncoding);
        } else if (isExternal && file_.IsOnDisk() && !HasWaveformFile()) {
            Add(las_finding::kWaveformFileMissing, at::kGlobalEncoding,
                {FileNameOf(WithExtension(file_.FileName(), L".wdp"))});
        } else if (!isExternal && header_.WaveformStart() != 0 &&
                   header_.WaveformStart() >= file_.FileSize()) {
            Add(las_finding::kWaveformBeyondEnd, at::kWaveformStart,
                {header_.WaveformStart(), file_.FileSize()});
        }
    }

    // The packets are in a file of their own, which can be compressed like the points.
    bool HasWaveformFile() const {
        constexpr std::array kExtensions{L".wdp", L".WDP", L".wdz", L".WDZ"};
        return std::ranges::any_of(kExtensions, [this](const wchar_t* extension) {
            return FileExists(WithExtension(file_.FileName(), extension));
        });
    }

    // Where compressed points end is not in the header.
    void CheckEvlrStart() {
        std::uint64_t end = std::max<std::uint64_t>(header_.OffsetToPoints(), header_.HeaderSize());
        if (!header_.IsCompressed() && header_.PointRecordLength() != 0 && end < file_.FileSize()) {
            const std::uint64_t room = (file_.FileSize() - end) / header_.PointRecordLength();
            end += std::min(header_.PointCount(), room) * header_.PointRecordLength();
        }
        if (header_.EvlrStart() < end) {
            Add(las_finding::kEvlrsInsideData, at::kEvlrStart, {header_.EvlrStart(), end});
        }
    }

    void CheckRecordCounts() {
        const std::size_t vlrs = file_.GetVLRs().size();
        if (vlrs < header_.VlrCount()) {
            Add(vlrs == kMostRecords ? las_finding::kVlrsNotListed : las_finding::kVlrCount, at::kVlrCount,
                {header_.VlrCount(), vlrs});
        }
        const std::size_t evlrs = file_.GetEVLRs().size();
        if (file_.GetVersionCode() == las::kLas14 && evlrs < header_.EvlrCount()) {
            Add(evlrs == kMostRecords ? las_finding::kEvlrsNotListed : las_finding::kEvlrCount,
                at::kEvlrCount, {header_.EvlrCount(), evlrs});
        }
    }

    void CheckVlrs() {
        const auto& vlrs = file_.GetVLRs();
        AddTooLarge(kVlrs, vlrs, [](const VlrView& vlr) {
            return vlr.UserId() == las::kProjectionUserId || vlr.RecordId() == las::kExtraBytesRecordId;
        });
        if (file_.GetExtraBytes().IsSpread()) {
            Add(las_finding::kExtraBytesSpread, at::kVlrCount);
        }
        if (!vlrs.empty() && vlrs.back().IsTruncated()) {
            AddTruncated(las_finding::kVlrTruncated, kVlrs, vlrs);
        }
    }

    void CheckEvlrs() {
        const auto& evlrs = file_.GetEVLRs();
        if (!evlrs.empty()) {
            CheckEvlrStart();
        }
        AddTooLarge(kEvlrs, evlrs,
                    [](const EvlrEntry& evlr) { return evlr.UserId() == las::kProjectionUserId; });
        if (!evlrs.empty() && evlrs.back().IsTruncated()) {
            AddTruncated(las_finding::kEvlrTruncated, kEvlrs, evlrs);
        }
    }

    // The first one stands for all.
    template <typename Records, typename Decoded>
    void AddTooLarge(const char* list, const Records& records, Decoded isDecoded) {
        const auto found = std::ranges::find_if(
            records, [&](const auto& record) { return !record.HasData() && isDecoded(record); });
        if (found != records.end()) {
            AddOfRecord(las_finding::kRecordTooLarge, list, static_cast<std::size_t>(found - records.begin()),
                        *found,
                        {FromUtf8(found->UserId()), found->RecordId(),
                         static_cast<double>(found->RecordLength()) * 1e-6});
        }
    }

    // Only the last record of a list can be truncated.
    template <typename Records>
    void AddTruncated(const FindingKind& kind, const char* list, const Records& records) {
        const auto& last = records.back();
        AddOfRecord(kind, list, records.size() - 1, last,
                    {records.size(), FromUtf8(last.UserId()), last.RecordId()});
    }

    const LASFile& file_;
    const LasHeader& header_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> ValidateLas(const LASFile& file) {
    return Validator(file).Run();
}

void SortFindings(std::vector<Finding>& findings) {
    // The first one is the row's summary, and of the notes the missing CRS matters most.
    const auto rank = [](const Finding& finding) {
        return std::tuple(-static_cast<int>(finding.severity),
                          std::string_view(finding.code) != las_finding::kNoCrs.code,
                          finding.where.offset.value_or(0));
    };
    std::ranges::stable_sort(findings, {}, rank);
}

}  // namespace orvex
