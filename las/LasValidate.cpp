#include "las/LasValidate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>

#include "las/LASFile.h"
#include "support/Format.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace at = las::at;

// Axes for which a condition holds, as in "X, Z".
std::wstring AxesWhere(const std::function<bool(std::size_t axis)>& holds) {
    constexpr std::array<const wchar_t*, 3> kNames{L"X", L"Y", L"Z"};
    std::wstring axes;
    for (std::size_t axis = 0; axis < kNames.size(); ++axis) {
        if (holds(axis)) {
            axes.append(axes.empty() ? L"" : L", ").append(kNames[axis]);
        }
    }
    return axes;
}

std::uint16_t SmallestHeaderSize(int versionCode) {
    const las::VersionFacts* const version = las::FindVersion(versionCode);
    return version == nullptr ? las::kLegacyHeaderSize : version->headerSize;
}

class Validator {
  public:
    explicit Validator(const LASFile& file) : file_(file), header_(file.Header()) {}

    std::vector<LasFinding> Run() {
        if (!header_.HasSignature()) {
            Add(LasFindingCode::SignatureMissing, FindingSeverity::Error, 0, text::kNotLas,
                {file_.FileName()});
        }
        CheckVersion();
        CheckCreationDate();
        CheckLayout();
        CheckPointFormat();
        CheckScale();
        CheckExtent();
        CheckPointCount();
        CheckVlrs();
        CheckEvlrs();
        if (!file_.HasProjectionRecords()) {
            Add(LasFindingCode::NoCrs, FindingSeverity::Note, at::kVlrCount, text::kFileWithoutCrs, {});
        }
        SortFindings(findings_);
        return std::move(findings_);
    }

  private:
    void Add(LasFindingCode code, FindingSeverity severity, std::uint64_t offset, StringId text,
             std::initializer_list<FormatArg> arguments) {
        findings_.push_back({code, severity, offset, FormatText(Text(text), arguments)});
    }

    void CheckVersion() {
        if (file_.GetVersionCode() < 0) {
            Add(LasFindingCode::UnknownVersion, FindingSeverity::Error, at::kVersionMajor,
                text::kLasVersionUnknown,
                {static_cast<unsigned>(header_.VersionMajor()),
                 static_cast<unsigned>(header_.VersionMinor())});
        } else if (file_.GetVersionCode() == las::kLas20) {
            Add(LasFindingCode::UnknownVersion, FindingSeverity::Warning, at::kVersionMajor,
                text::kLasVersion20, {});
        }
    }

    void CheckCreationDate() {
        if (header_.IsCreationDateImpossible()) {
            Add(LasFindingCode::DateImpossible, FindingSeverity::Note, at::kCreationDay,
                text::kLasDateImpossible, {header_.CreationDay(), header_.CreationYear()});
        }
    }

    void CheckLayout() {
        const std::uint16_t smallest = SmallestHeaderSize(file_.GetVersionCode());
        if (header_.HeaderSize() < smallest) {
            Add(LasFindingCode::HeaderSizeOdd,
                header_.HeaderSize() < las::kLegacyHeaderSize ? FindingSeverity::Error
                                                              : FindingSeverity::Warning,
                at::kHeaderSize, text::kLasHeaderSizeTooSmall, {header_.HeaderSize(), smallest});
        }
        if (header_.OffsetToPoints() < std::max(header_.HeaderSize(), las::kLegacyHeaderSize)) {
            Add(LasFindingCode::OffsetInsideHeader, FindingSeverity::Error, at::kOffsetToPoints,
                text::kLasPointsInsideHeader, {header_.OffsetToPoints(), header_.HeaderSize()});
        }
        if (header_.OffsetToPoints() > file_.FileSize()) {
            Add(LasFindingCode::OffsetBeyondEnd, FindingSeverity::Error, at::kOffsetToPoints,
                text::kLasPointsBeyondEnd, {header_.OffsetToPoints(), file_.FileSize()});
        }
    }

    void CheckPointFormat() {
        const las::PointFormatFacts* facts = las::FindPointFormat(header_.PointFormat());
        if (facts == nullptr) {
            Add(LasFindingCode::UnknownPointFormat, FindingSeverity::Error, at::kPointFormat,
                text::kLasPointFormatUnknown, {header_.PointFormat()});
        } else if (header_.PointRecordLength() < facts->minimumLength) {
            Add(LasFindingCode::RecordLengthTooShort, FindingSeverity::Error, at::kPointRecordLength,
                text::kLasRecordLengthTooSmall,
                {header_.PointFormat(), facts->minimumLength, header_.PointRecordLength()});
        }
    }

    void CheckScale() {
        const auto scale = header_.Scale();
        const auto offset = header_.Offset();
        const auto zero = AxesWhere([&](std::size_t axis) { return scale[axis] == 0; });
        if (!zero.empty()) {
            Add(LasFindingCode::ScaleZero, FindingSeverity::Warning, at::kScale, text::kLasScaleZero, {zero});
        }
        const auto notFinite = AxesWhere(
            [&](std::size_t axis) { return !std::isfinite(scale[axis]) || !std::isfinite(offset[axis]); });
        if (!notFinite.empty()) {
            Add(LasFindingCode::ScaleNotFinite, FindingSeverity::Error, at::kScale, text::kLasScaleNotFinite,
                {notFinite});
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
            [&](std::size_t axis) { return !std::isfinite(low[axis]) || !std::isfinite(high[axis]); });
        if (!notFinite.empty()) {
            Add(LasFindingCode::ExtentNotFinite, FindingSeverity::Warning, at::kMaximum,
                text::kLasExtentNotFinite, {notFinite});
        }
        const auto inverted = AxesWhere([&](std::size_t axis) { return low[axis] > high[axis]; });
        if (!inverted.empty()) {
            Add(LasFindingCode::ExtentInverted, FindingSeverity::Warning, at::kMaximum,
                text::kLasExtentInverted, {inverted});
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
            Add(LasFindingCode::NoPoints, FindingSeverity::Warning,
                is14 ? at::kPointCount : at::kLegacyPointCount, text::kLasNoPoints, {});
        }
        if (is14 && header_.LegacyPointCount() != 0 && header_.LegacyPointCount() != count) {
            Add(LasFindingCode::CountMismatch, FindingSeverity::Warning, at::kLegacyPointCount,
                text::kLasPointCountsDiffer, {count, header_.LegacyPointCount()});
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
            Add(LasFindingCode::PointsTruncated, FindingSeverity::Error, header_.OffsetToPoints(),
                count - held == 1 ? text::kLasTruncatedPoint : text::kLasTruncatedPoints,
                {count - held, count, held});
            return;
        }
        const std::uint64_t end = header_.OffsetToPoints() + count * header_.PointRecordLength();
        if (held > count) {
            Add(LasFindingCode::CountMismatch, FindingSeverity::Warning, end, text::kLasPointCountTooLarge,
                {count, held});
        } else if (bytes % header_.PointRecordLength() != 0) {
            Add(LasFindingCode::BytesAfterPoints, FindingSeverity::Note, end, text::kLasBytesAfterPoints,
                {bytes % header_.PointRecordLength()});
        }
    }

    void CheckVlrs() {
        const auto& vlrs = file_.GetVLRs();
        if (vlrs.size() < header_.VlrCount()) {
            Add(LasFindingCode::VlrCountTooHigh, FindingSeverity::Warning, at::kVlrCount,
                vlrs.size() == kMostRecords ? text::kLasVlrsNotListed : text::kLasVlrCountMismatch,
                {header_.VlrCount(), vlrs.size()});
        }
        AddTooLarge(vlrs, [](const VlrView& vlr) {
            return vlr.UserId() == las::kProjectionUserId || vlr.RecordId() == las::kExtraBytesRecordId;
        });
        if (file_.GetExtraBytes().IsSpread()) {
            Add(LasFindingCode::ExtraBytesSpread, FindingSeverity::Warning, at::kVlrCount,
                text::kLasExtraBytesSpread, {});
        }
        if (!vlrs.empty() && vlrs.back().IsTruncated()) {
            AddTruncated(LasFindingCode::VlrTruncated, text::kLasVlrOverrun, vlrs);
        }
    }

    void CheckEvlrs() {
        const auto& evlrs = file_.GetEVLRs();
        if (file_.GetVersionCode() == las::kLas14 && evlrs.size() < header_.EvlrCount()) {
            Add(LasFindingCode::EvlrCountTooHigh, FindingSeverity::Warning, at::kEvlrCount,
                evlrs.size() == kMostRecords ? text::kLasEvlrsNotListed : text::kLasEvlrCountMismatch,
                {header_.EvlrCount(), evlrs.size()});
        }
        AddTooLarge(evlrs, [](const EvlrEntry& evlr) { return evlr.UserId() == las::kProjectionUserId; });
        if (!evlrs.empty() && evlrs.back().IsTruncated()) {
            AddTruncated(LasFindingCode::EvlrTruncated, text::kLasEvlrOverrun, evlrs);
        }
    }

    // The first one stands for all.
    template <typename Records, typename Decoded>
    void AddTooLarge(const Records& records, Decoded isDecoded) {
        const auto found = std::ranges::find_if(
            records, [&](const auto& record) { return !record.HasData() && isDecoded(record); });
        if (found != records.end()) {
            Add(LasFindingCode::RecordTooLarge, FindingSeverity::Warning, found->FileOffset(),
                text::kLasRecordTooLarge,
                {FromUtf8(found->UserId()), found->RecordId(),
                 static_cast<double>(found->RecordLength()) * 1e-6});
        }
    }

    // Only the last record of a list can be truncated.
    template <typename Records>
    void AddTruncated(LasFindingCode code, StringId text, const Records& records) {
        const auto& last = records.back();
        Add(code, FindingSeverity::Warning, last.FileOffset(), text,
            {records.size(), FromUtf8(last.UserId()), last.RecordId()});
    }

    const LASFile& file_;
    const LasHeader& header_;
    std::vector<LasFinding> findings_;
};

}  // namespace

std::vector<LasFinding> ValidateLas(const LASFile& file) {
    return Validator(file).Run();
}

void SortFindings(std::vector<LasFinding>& findings) {
    std::ranges::stable_sort(findings, [](const LasFinding& a, const LasFinding& b) {
        return a.severity != b.severity ? a.severity > b.severity : a.offset < b.offset;
    });
}

}  // namespace orvex
