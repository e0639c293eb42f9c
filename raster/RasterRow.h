#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "crs/LayerAssignment.h"
#include "orvexcommon/RasterFileInfo.h"
#include "raster/RasterFindings.h"
#include "support/HostObjects.h"

namespace orvex {

/// The properties of one raster file, which the host gets with the file.
class RasterFile final : public RasterFileInfo {
  public:
    const std::wstring& FileName() const override { return path; }
    const RasterProperties& Properties() const override { return properties; }
    bool IsBigTiff() const override { return bigTiff; }

    std::wstring path;
    RasterProperties properties;
    bool bigTiff = false;
};

/// One raster file as the grid, the details pane and the command line show it, read without its pixels. Cells
/// are computed from it when asked for.
struct RasterRow {
    std::wstring path;
    bool loadable = false;  ///< described
    bool threw = false;     ///< an unexpected exception ended the reading; what was known by then is here
    std::wstring summary;   ///< one line: the reason when not loadable, else the worst finding or "OK"
    std::vector<Finding> findings;     ///< everything that is odd about the file, worst first
    std::unique_ptr<RasterFile> file;  ///< null when not loadable, and once it belongs to the host
    std::wstring unit;                 ///< the linear unit as shown: "Meters", "Unknown", or as reported
    CrsPtr crs;                        ///< never null
    std::uint64_t fileSize = 0;        ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;       ///< milliseconds since 1970-01-01 UTC; 0 when unknown
    LayerPlace place;                  ///< among the layers of the project; set by the page

    bool IsDescribed() const { return file != nullptr; }
    const RasterProperties& Properties() const { return file->properties; }
};

/// Reads one file with the host's raster-information object; where the host has none (or `maker` is empty),
/// and for what the host's object leaves out, with the component's own reader. Never throws: a file that
/// cannot be described is told from an unexpected exception. Safe from any thread; nothing is written.
RasterRow InspectRasterFile(const std::wstring& path, RasterUse use,
                            const RasterInformationMaker& maker = {});

/// Row of a file whose reading threw.
RasterRow UnreadRasterFile(const std::wstring& path, const std::wstring& message);

LoadFlag LoadFlagOf(const RasterRow& row);

/// All findings, one a line, and whether the project has the file; empty when all is well.
std::wstring FindingsText(const RasterRow& row);

/// Gives every row its place among the layers of the project; rows that could not be described get none.
/// `ignoreCrs`: as if the files had no CRS. New layers are named `prefix` and a number. `existing`: name to
/// WKT.
void AssignLayers(std::vector<RasterRow>& rows, const std::map<std::wstring, std::wstring>& existing,
                  const LayerRules& rules, bool ignoreCrs, const std::wstring& prefix);

}  // namespace orvex
