#include "host/inspect/FileReport.h"

#include "host/inspect/ReportKinds.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

FileReport InspectFile(const std::wstring& path, const ReportKind* kind) {
    FileReport report;
    report.path = path;
    const ReportKind* const reader = kind == nullptr ? ReportKindOf(path) : kind;
    report.kind = reader == nullptr ? "unknown" : reader->name;
    if (reader == nullptr) {
        report.summary = Text(40816_lsid);
        return report;
    }
    try {
        reader->inspect(report);
    } catch (...) {
        report.loadable = false;
        report.summary = CurrentExceptionText();
        report.las.reset();
        report.raster.reset();
    }
    return report;
}

}  // namespace orvex
