#pragma once
// Reads one file for the command line.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feature/FeatureRow.h"
#include "las/LasRow.h"
#include "orvexcommon/CloudAccount.h"
#include "photo/PhotoRow.h"
#include "raster/RasterRow.h"
#include "support/DataKinds.h"

namespace orvex {

struct ReportKind;

/// Result of inspecting one file. The file itself is closed.
struct FileReport {
    std::wstring path;
    std::string
        kind;  ///< name of a ReportKind, "cloud" for a URL, or "unknown" when no reader takes the file
    bool loadable = false;
    std::wstring summary;
    std::vector<Finding> findings;      ///< worst first
    CrsPtr crs;                         ///< null when the file could not be opened
    std::optional<LasRow> las;          ///< of an opened LAS or LAZ file: its `file` is not null
    std::optional<RasterRow> raster;    ///< of an opened raster
    std::optional<PhotoRow> photo;      ///< of a photo whose metadata was read
    std::optional<FeatureRow> feature;  ///< of a feature file that could be read
    RasterUse use = RasterUse::Image;   ///< page that a raster is listed for
    /// End of the look into the file of a URL, and the bytes received for it; nullopt for other files.
    std::optional<CloudStatus> cloudStatus;
    std::uint64_t transferred = 0;
};

/// Version of a LAS file as "1.4".
std::string LasVersion(const LASFile& file);

/// First band of a raster; a band without any values when the file describes none.
const RasterBandProperties& FirstBand(const RasterRow& raster);

/// Kind of file that the command reads.
struct ReportKind {
    const char* name;  ///< in reports and after --as
    DataKind data;
    void (*inspect)(FileReport& report);  ///< reads `report.path`

    /// True for a name that --as takes from a searched folder. Any raster can hold an image or elevations;
    /// only its user knows.
    bool IsSearched(std::wstring_view path) const;
};

/// Returns the kind called `name`, as after --as; null if there is none.
const ReportKind* FindReportKind(std::wstring_view name);

/// Returns the kind that a file's name implies; null if no reader takes it.
const ReportKind* ReportKindOf(std::wstring_view path);

/// True for "http://..." and "https://...", in any letter case.
bool IsUrl(std::wstring_view path);

/// Reads a file as `kind`, or as its name implies when `kind` is null; of a URL, the LAS file there, with
/// `call`. Never throws: a failure becomes the summary. Safe from any thread.
FileReport InspectFile(const std::wstring& path, const ReportKind* kind = nullptr,
                       const CloudCall& call = {});

}  // namespace orvex
