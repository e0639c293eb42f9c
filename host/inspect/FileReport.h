#pragma once
#include <optional>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "host/inspect/LasReport.h"
#include "host/inspect/RasterReport.h"

namespace orvex {

struct ReportKind;

/// What the command line tells of one file. Plain data: the file itself is closed, so that a report costs
/// what it says and nothing else.
struct FileReport {
    std::wstring path;
    std::string kind;  ///< of ReportKinds, or "unknown" for files that no reader is for
    bool loadable = false;
    std::wstring summary;
    std::vector<std::wstring> findings;
    CrsPtr crs;  ///< null when the file could not be opened
    std::optional<LasReport> las;
    std::optional<RasterReport> raster;
};

/// Reads one file as one of a kind, or as its name says when `kind` is null; never throws. Safe from any
/// thread.
FileReport InspectFile(const std::wstring& path, const ReportKind* kind = nullptr);

}  // namespace orvex
