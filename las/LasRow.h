#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "crs/LayerAssignment.h"
#include "las/LASFile.h"
#include "las/LasCrs.h"
#include "las/LasValidate.h"
#include "las/companion/CompanionState.h"
#include "support/Finding.h"

namespace orvex {

/// One LAS or LAZ file as the grid, the details pane and the command line show it, read without its points.
/// Cells are computed from it when asked for.
struct LasRow {
    std::wstring path;
    bool loadable = false;
    std::wstring summary;  ///< one line: the reason when not loadable, else the first finding or "OK"
    std::vector<Finding> findings;  ///< everything that is odd about the file, worst first
    std::unique_ptr<LASFile> file;  ///< null when not loadable, and once it belongs to the host
    CrsPtr crs;                     ///< never null; of the WKT that cannot be read, if there is nothing else
    LasCrsSource crsSource = LasCrsSource::None;
    CompanionState companion = CompanionState::None;  ///< of the QVR file beside it
    std::uint64_t fileSize = 0;                       ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;                      ///< milliseconds since 1970-01-01 UTC; 0 when unknown
    LayerPlace place;                                 ///< among the layers of the project; set by the page
};

/// Opens and reads one file; never throws. Safe from any thread; nothing is written.
LasRow InspectLasFile(const std::wstring& path);

/// Reads one file from elsewhere; never throws. Like InspectLasFile, except that nothing of a disk is looked
/// at, the time of its last change is unknown, and compressed points are not checked.
LasRow InspectLasSource(const std::wstring& name, const ByteSource& source);

/// Row of a file that could not be read at all.
LasRow UnreadLasFile(const std::wstring& path, const std::wstring& message);

LoadFlag LoadFlagOf(const LasRow& row);

/// True if a finding says that the file is damaged, so that its points cannot all be read.
bool HasErrors(const LasRow& row);

/// A sentence saying when a file with errors is loaded.
std::wstring LoadConditionText();

/// All findings, one a line; the reason for a file that is not loadable, empty when all is well. Says that
/// the project has the file, and when a file with errors is loaded.
std::wstring FindingsText(const LasRow& row);

}  // namespace orvex
