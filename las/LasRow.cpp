#include "las/LasRow.h"

#include <chrono>
#include <utility>

#include "las/LasCrs.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::int64_t ModifiedMs(const std::wstring& path) {
    const auto time = LastWriteTime(path);
    return time ? std::chrono::floor<std::chrono::milliseconds>(*time).time_since_epoch().count() : 0;
}

void DescribeFileCrs(LasRow& row) {
    const LASFile& file = *row.file;
    if (!file.HasProjectionRecords()) {
        return;
    }
    const LasCrs crs = ReadLasCrs(file);
    row.crs = DescribeCrs(crs.wkt);
    if (crs.isDamaged || (!crs.wkt.empty() && row.crs->name.empty())) {
        row.findings.push_back({LasFindingCode::CrsUnreadable, FindingSeverity::Warning, las::at::kVlrCount,
                                Text(text::kCrsUnreadable)});
    } else if (crs.wkt.empty()) {
        row.findings.push_back(
            {LasFindingCode::NoCrs, FindingSeverity::Note, las::at::kVlrCount, Text(text::kFileWithoutCrs)});
    }
}

// Nothing of a file that does not even begin as a LAS file can be trusted.
void RefuseWithoutSignature(LasRow& row) {
    if (row.file->Header().HasSignature()) {
        return;
    }
    row.loadable = false;
    row.summary = FormatText(Text(text::kNotLas), {row.path});
    row.findings = {{LasFindingCode::SignatureMissing, FindingSeverity::Error, 0, row.summary}};
    row.file.reset();
}

void Inspect(LasRow& row) {
    row.file = LASFile::Open(row.path, true, true);
    row.loadable = true;
    RefuseWithoutSignature(row);
    if (!row.loadable) {
        return;
    }
    row.fileSize = row.file->FileSize();
    row.findings = ValidateLas(*row.file);
    DescribeFileCrs(row);
    SortFindings(row.findings);
    const bool isOdd = !row.findings.empty() && row.findings.front().severity > FindingSeverity::Note;
    row.summary = isOdd ? row.findings.front().text : Text(text::kInspectionOk);
}

}  // namespace

LasRow UnreadLasFile(const std::wstring& path, const std::wstring& message) {
    LasRow row;
    row.path = path;
    row.summary = message;
    row.crs = DescribeCrs({});
    return row;
}

LasRow InspectLasFile(const std::wstring& path) {
    LasRow row = UnreadLasFile(path, {});
    row.modifiedMs = ModifiedMs(path);
    try {
        Inspect(row);
    } catch (...) {
        row.loadable = false;
        row.file.reset();
        row.findings.clear();
        row.summary = CurrentExceptionText();
    }
    if (!row.loadable) {
        row.fileSize = FileSizeOf(path).value_or(0);
    }
    return row;
}

LoadFlag LoadFlagOf(const LasRow& row) {
    return LoadFlagFor(row.file != nullptr, row.findings);
}

std::wstring FindingsText(const LasRow& row) {
    const bool isFailure = row.findings.empty() && row.file == nullptr;
    return isFailure ? row.summary : FindingLines(row.findings);
}

}  // namespace orvex
