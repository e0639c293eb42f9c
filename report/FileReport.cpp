#include "report/FileReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "cloud/CloudRow.h"
#include "cloud/RemoteLas.h"
#include "support/LDataError.h"
#include "support/SignedUrl.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// Copies what every kind of file has.
template <typename Inspection>
void ReportCommon(const Inspection& inspection, FileReport& report) {
    report.loadable = inspection.loadable;
    report.summary = inspection.summary;
    report.findings.assign(inspection.findings.begin(), inspection.findings.end());
}

void ReportLas(LasRow inspection, FileReport& report) {
    ReportCommon(inspection, report);
    if (inspection.file) {
        inspection.crs->Identify();
        report.crs = inspection.crs;
        report.las = std::move(inspection);
    }
}

void InspectLas(FileReport& report) {
    ReportLas(InspectLasFile(report.path), report);
}

/// Keeps what was read of a file that can be loaded.
template <typename Row>
void Keep(Row inspection, FileReport& report, std::optional<Row> FileReport::*kept) {
    ReportCommon(inspection, report);
    if (inspection.loadable) {
        report.crs = inspection.crs;
        report.*kept = std::move(inspection);
    }
}

template <RasterUse use>
void InspectRaster(FileReport& report) {
    Keep(InspectRasterFile(report.path, use), report, &FileReport::raster);
    report.use = use;
}

void InspectFeature(FileReport& report) {
    Keep(InspectFeatureFile(report.path), report, &FileReport::feature);
}

void InspectPhotoFile(FileReport& report) {
    Keep(InspectPhoto(report.path), report, &FileReport::photo);
}

constexpr ReportKind kKinds[] = {
    {"las", DataKind::Las, InspectLas},
    {"raster", DataKind::Raster, InspectRaster<RasterUse::Image>},
    {"dem", DataKind::Dem, InspectRaster<RasterUse::Dem>},
    {"feature", DataKind::Feature, InspectFeature},
    {"photo", DataKind::Photo, InspectPhotoFile},
};

/// Adds what the cloud page says about the link itself.
void AddExpiry(const std::wstring& url, FileReport& report) {
    constexpr std::size_t kFirst[] = {0};
    std::vector<CloudRow> rows;
    rows.push_back(PresignedRow(url));
    ApplyCloudRules(rows, kFirst, CurrentTimeMs());
    const std::vector<Finding>& found = rows.front().findings;
    report.findings.insert(report.findings.end(), found.begin(), found.end());
    std::ranges::stable_sort(report.findings, std::ranges::greater(), &Finding::severity);
    if (report.loadable) {
        report.summary = SummaryOf(report.findings);
    }
}

FileReport InspectUrl(const std::wstring& url, const ReportKind* kind, const CloudCall& call) {
    FileReport report;
    report.kind = "cloud";
    if (kind != nullptr && kind->data != DataKind::Las) {
        report.path = ShownUrl(url);
        report.summary = Text(text::kInspectUrlKind);
        return report;
    }
    RemoteLas remote = InspectRemoteLas(url, call);
    report.path = remote.row.path;
    report.cloudStatus = remote.status;
    report.transferred = remote.transferred;
    ReportLas(std::move(remote.row), report);
    AddExpiry(url, report);
    return report;
}

template <typename Test>
const ReportKind* FindKind(Test test) {
    const auto* const kind = std::ranges::find_if(kKinds, test);
    return kind == std::ranges::end(kKinds) ? nullptr : kind;
}

}  // namespace

std::string LasVersion(const LASFile& file) {
    return fmt::format("{}.{}", file.Header().VersionMajor(), file.Header().VersionMinor());
}

const RasterBandProperties& FirstBand(const RasterRow& raster) {
    static const RasterBandProperties none;
    const std::vector<RasterBandProperties>& bands = raster.Properties().bandDetails;
    return bands.empty() ? none : bands.front();
}

const ReportKind* FindReportKind(std::wstring_view name) {
    return FindKind([&](const ReportKind& kind) { return FromUtf8(kind.name) == name; });
}

const ReportKind* ReportKindOf(std::wstring_view path) {
    return FindKind([data = DataKindOf(path)](const ReportKind& kind) { return data == kind.data; });
}

bool ReportKind::IsSearched(std::wstring_view path) const {
    const std::optional<DataKind> found = DataKindOf(path);
    return found && CanBeReadAs(*found, data);
}

bool IsUrl(std::wstring_view path) {
    constexpr std::wstring_view kSchemes[] = {L"HTTP://", L"HTTPS://"};
    return std::ranges::any_of(kSchemes, [&](std::wstring_view scheme) {
        return EqualNoCase(path.substr(0, scheme.size()), scheme);
    });
}

FileReport InspectFile(const std::wstring& path, const ReportKind* kind, const CloudCall& call) {
    if (IsUrl(path)) {
        return InspectUrl(path, kind, call);
    }
    FileReport report;
    report.path = path;
    const ReportKind* const reader = kind == nullptr ? ReportKindOf(path) : kind;
    report.kind = reader == nullptr ? "unknown" : reader->name;
    if (reader == nullptr) {
        report.summary = Text(text::kInspectUnsupportedKind);
        return report;
    }
    try {
        reader->inspect(report);
    } catch (...) {
        report.loadable = false;
        report.summary = CurrentExceptionText();
        report.las.reset();
        report.raster.reset();
        report.photo.reset();
        report.feature.reset();
    }
    return report;
}

}  // namespace orvex
