#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "las/LASFile.h"
#include "las/LasValidate.h"

namespace orvex {

/// What a grid row, the details pane and the command line show of one LAS or LAZ file, read without its
/// points.
struct LasInspection {
    std::wstring path;
    bool loadable = false;
    std::wstring summary;  ///< one line: the message when not loadable, else the worst finding or "OK"
    std::vector<LasFinding> findings;  ///< everything that is odd about the file, worst first
    std::unique_ptr<LASFile> file;     ///< null when not loadable
    CrsPtr crs;                        ///< never null
    std::uint64_t fileSize = 0;        ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;       ///< milliseconds since 1970-01-01 UTC; 0 when unknown
};

/// Opens and reads one file; never throws. Safe from any thread; nothing is written.
LasInspection InspectLasFile(const std::wstring& path);

}  // namespace orvex
