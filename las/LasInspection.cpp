#include "las/LasInspection.h"

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

// Findings about the CRS point at the count of VLRs, which its records are among.
void DescribeFileCrs(LasInspection& inspection) {
    const LASFile& file = *inspection.file;
    if (!file.HasProjectionRecords()) {
        return;
    }
    const LasCrs crs = ReadLasCrs(file);
    inspection.crs = DescribeCrs(crs.wkt);
    if (crs.isDamaged || (!crs.wkt.empty() && inspection.crs->name.empty())) {
        inspection.findings.push_back({LasFindingCode::CrsUnreadable, FindingSeverity::Warning,
                                       las::at::kVlrCount, Text(text::kCrsUnreadable)});
    } else if (crs.wkt.empty()) {
        inspection.findings.push_back(
            {LasFindingCode::NoCrs, FindingSeverity::Note, las::at::kVlrCount, Text(text::kFileWithoutCrs)});
    }
}

// Nothing of a file that does not even begin as a LAS file can be trusted.
void RefuseWithoutSignature(LasInspection& inspection) {
    if (inspection.file->Header().HasSignature()) {
        return;
    }
    inspection.loadable = false;
    inspection.summary = FormatText(Text(text::kNotLas), {inspection.path});
    inspection.findings = {{LasFindingCode::SignatureMissing, FindingSeverity::Error, 0, inspection.summary}};
    inspection.file.reset();
}

void Inspect(LasInspection& inspection) {
    inspection.file = LASFile::Open(inspection.path, true, true);
    inspection.loadable = true;
    RefuseWithoutSignature(inspection);
    if (!inspection.loadable) {
        return;
    }
    inspection.fileSize = inspection.file->FileSize();
    inspection.findings = ValidateLas(*inspection.file);
    DescribeFileCrs(inspection);
    SortFindings(inspection.findings);
    const bool isOdd =
        !inspection.findings.empty() && inspection.findings.front().severity > FindingSeverity::Note;
    inspection.summary = isOdd ? inspection.findings.front().text : Text(text::kInspectionOk);
}

}  // namespace

LasInspection InspectLasFile(const std::wstring& path) {
    LasInspection inspection;
    inspection.path = path;
    inspection.crs = DescribeCrs({});
    inspection.modifiedMs = ModifiedMs(path);
    try {
        Inspect(inspection);
    } catch (...) {
        inspection.loadable = false;
        inspection.file.reset();
        inspection.findings.clear();
        inspection.summary = CurrentExceptionText();
    }
    if (!inspection.loadable) {
        inspection.fileSize = FileSizeOf(path).value_or(0);
    }
    return inspection;
}

}  // namespace orvex
