#include "las/LasRow.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "crs/ExtentFindings.h"
#include "las/LasFailure.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

bool Has(const LasRow& row, const FindingKind& kind) {
    return std::ranges::find(row.findings, kind.code, &Finding::code) != row.findings.end();
}

std::wstring CrsProblemText(const LasCrs& crs) {
    switch (crs.source) {
        case LasCrsSource::Wkt:
            return crs.problem + L" " + Text(text::kCrsFromWktInstead);
        case LasCrsSource::GeoKeys:
            return crs.problem + L" " + Text(text::kCrsFromKeysInstead);
        default:
            return Text(text::kCrsUnreadable) + L" " + crs.problem;
    }
}

void DescribeFileCrs(LasRow& row) {
    const LASFile& file = *row.file;
    if (!file.HasProjectionRecords()) {
        return;
    }
    const LasCrs crs = ReadLasCrs(file);
    row.crs = crs.crs ? crs.crs : DescribeCrs(crs.unreadableWkt);
    row.crsSource = crs.source;
    if (!crs.problem.empty()) {
        row.findings.push_back(
            FoundAt(las::at::kVlrCount, FindingInWords(las_finding::kCrsUnreadable, CrsProblemText(crs))));
    } else if (!crs.crs && !Has(row, las_finding::kRecordTooLarge) && !file.HasUnreadRecords()) {
        row.findings.push_back(FoundAt(las::at::kVlrCount, MakeFinding(las_finding::kNoCrs)));
    }
}

/// The extent of a file without points can be anything.
void CheckExtent(LasRow& row) {
    const std::array<double, 3> low = row.file->Minimum();
    const std::array<double, 3> high = row.file->Maximum();
    std::optional<Finding> finding =
        row.file->GetPointCount() == 0 ? std::nullopt : CheckExtent(*row.crs, low, high);
    if (finding) {
        finding->where.member = "/las/max";
        row.findings.push_back(FoundAt(las::at::kMaximum, *std::move(finding)));
    }
}

// What decompression would trip over. It starts from the header, so that this has to be sound.
void CheckCompression(LasRow& row) {
    std::wstring reason;
    if (row.file->IsOnDisk() && row.file->Header().IsCompressed() && !HasErrors(row) &&
        !OrvexUtilities::LAZCheck(row.path, reason)) {
        row.findings.push_back(FoundAt(row.file->Header().OffsetToPoints(),
                                       FindingInWords(las_finding::kCompressionDamaged, std::move(reason))));
    }
}

// Only files with a companion pay for this.
void ReadCompanionState(LasRow& row) {
    if (!row.file->IsOnDisk() ||
        row.file->GetCompanionStatus() != static_cast<int>(CompanionStatus::QvrFile)) {
        return;
    }
    const CompanionFacts facts = CheckCompanion(row.path);
    row.companion = facts.state;
    if (facts.state == CompanionState::Stale) {
        row.findings.push_back(MakeFinding(las_finding::kQvrStale, {facts.reason}));
    } else if (facts.state == CompanionState::Unreadable) {
        row.findings.push_back(MakeFinding(las_finding::kQvrUnreadable, {facts.reason}));
    } else if (facts.state == CompanionState::OfOther) {
        row.findings.push_back(FindingInWords(las_finding::kQvrOfOther, facts.reason));
    }
}

/// The row of a file that cannot be opened: what that means, and the message of the exception.
void Refuse(LasRow& row, const std::wstring& message) {
    row.loadable = false;
    row.file.reset();
    row.summary = PlainLasFailure(message);
    row.findings = {FindingInWords(las_finding::kUnreadable, row.summary)};
    if (row.summary != message) {
        row.findings.push_back(MakeFinding(las_finding::kReaderMessage, {message}));
    }
}

// Nothing of a file that does not even begin as a LAS file can be trusted.
void RefuseWithoutSignature(LasRow& row) {
    if (row.file->Header().HasSignature()) {
        return;
    }
    row.loadable = false;
    row.findings.clear();
    row.findings.push_back(FoundAt(0, MakeFinding(las_finding::kSignatureMissing, {row.path})));
    row.summary = row.findings.front().text;
    row.file.reset();
}

void Inspect(LasRow& row) {
    row.loadable = true;
    RefuseWithoutSignature(row);
    if (!row.loadable) {
        return;
    }
    row.fileSize = row.file->FileSize();
    row.modifiedMs = row.file->ModifiedMs();
    row.findings = ValidateLas(*row.file);
    CheckCompression(row);
    DescribeFileCrs(row);
    CheckExtent(row);
    ReadCompanionState(row);
    SortFindings(row.findings);
    row.summary = SummaryOf(row.findings);
}

/// Row of a file that `open` opens.
template <typename Open>
LasRow InspectOpened(const std::wstring& path, const Open& open) {
    LasRow row;
    row.path = path;
    row.crs = DescribeCrs({});
    try {
        row.file = open();
        Inspect(row);
    } catch (...) {
        Refuse(row, CurrentExceptionText());
    }
    return row;
}

}  // namespace

LasRow UnreadLasFile(const std::wstring& path, const std::wstring& message) {
    LasRow row;
    row.path = path;
    row.crs = DescribeCrs({});
    Refuse(row, message);
    return row;
}

LasRow InspectLasFile(const std::wstring& path) {
    LasRow row = InspectOpened(path, [&] { return LASFile::Open(path, true, true); });
    if (!row.loadable) {
        row.fileSize = FileSizeOf(path).value_or(0);
        row.modifiedMs = ModifiedMs(path);
    }
    return row;
}

LasRow InspectLasSource(const std::wstring& name, const ByteSource& source) {
    LasRow row = InspectOpened(name, [&] { return LASFile::Read(source, name); });
    if (!row.loadable) {
        source.Size(row.fileSize);
    }
    return row;
}

LoadFlag LoadFlagOf(const LasRow& row) {
    return LoadFlagFor(row.file != nullptr, row.findings, row.place);
}

bool HasErrors(const LasRow& row) {
    return std::ranges::any_of(
        row.findings, [](const Finding& finding) { return finding.severity == FindingSeverity::Error; });
}

std::wstring LoadConditionText() {
    return FormatText(Text(text::kLasLoadedOnlyIfChecked), {Text(text::kLoadCorruptFiles)});
}

std::wstring FindingsText(const LasRow& row) {
    const bool isConditional = row.file != nullptr && HasErrors(row);
    return StateLines(row) + (isConditional ? L"\n" + LoadConditionText() : L"");
}

}  // namespace orvex
