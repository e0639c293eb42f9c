#include "host/inspect/LasReport.h"

#include <fmt/format.h>

#include "host/inspect/FileReport.h"
#include "las/LasInspection.h"
#include "las/LasText.h"

namespace orvex {

namespace {

template <typename Record>
std::vector<LasRecordReport> ReportRecords(const std::vector<Record>& records) {
    std::vector<LasRecordReport> reports;
    reports.reserve(records.size());
    for (const Record& record : records) {
        reports.push_back({record.UserId(), record.RecordId(), record.RecordLength(), record.Description()});
    }
    return reports;
}

LasReport ReportLas(const LASFile& file) {
    const LasHeader& header = file.Header();
    LasReport las;
    las.version = fmt::format("{}.{}", header.VersionMajor(), header.VersionMinor());
    las.versionCode = file.GetVersionCode();
    las.pointFormat = file.PointFormat();
    las.compressed = header.IsCompressed();
    las.headerSize = header.HeaderSize();
    las.offsetToPoints = header.OffsetToPoints();
    las.pointRecordLength = header.PointRecordLength();
    las.pointCount = file.GetPointCount();
    las.scale = header.Scale();
    las.offset = header.Offset();
    las.min = file.Minimum();
    las.max = file.Maximum();
    las.globalEncoding = header.GlobalEncoding();
    las.gpsTime = LasGpsTimeText(file);
    las.vlrs = ReportRecords(file.GetVLRs());
    las.evlrs = ReportRecords(file.GetEVLRs());
    for (const ExtraBytesAttribute& attribute : file.GetExtraBytes().Attributes()) {
        las.extraBytes.push_back({attribute.name, attribute.offset, attribute.size});
    }
    las.companionStatus = file.GetCompanionStatus();
    las.vlrText = LasVlrText(file);
    return las;
}

}  // namespace

void InspectLas(FileReport& report) {
    const LasInspection inspection = InspectLasFile(report.path);
    report.loadable = inspection.loadable;
    report.summary = inspection.summary;
    for (const LasFinding& finding : inspection.findings) {
        report.findings.push_back(finding.text);
    }
    if (inspection.file) {
        report.crs = inspection.crs;
        report.las = ReportLas(*inspection.file);
    }
}

}  // namespace orvex
