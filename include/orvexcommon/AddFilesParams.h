#pragma once
// The record that the host passes to ShowAddFilesDialog and reads afterwards.
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"

namespace orvex {
class OrvexApplication;

/// Kinds of companion index that the host builds for LAS files.
inline constexpr std::int32_t kPyramidNone = 0;
inline constexpr std::int32_t kPyramidOrvexLas = 1;
inline constexpr std::int32_t kPyramidQvr = 2;

/// Treatment of the original LAS files when OrvexLAS files are written.
inline constexpr std::int32_t kOverwriteOriginals = 0;
inline constexpr std::int32_t kBackupOriginals = 1;
inline constexpr std::int32_t kBackupAndCompressOriginals = 2;
}  // namespace orvex

/// Folder path (without a trailing separator) to the names of the files chosen in it, in grid order.
using FilesByFolder = std::map<std::wstring, std::vector<std::wstring>>;

/// The host sets inputs before the call. Results are written only if the dialog ends with OK: those of the
/// LAS, the raster and the feature tab whenever the tab exists, those of the others only if the tab lists
/// anything. The host creates, owns and destroys the record, and after OK owns and deletes the objects in
/// lasFileDetails and rasterFileDetails.
///
/// Pass a fresh record to each call, or call ClearResults() first. Results of an earlier call are neither
/// touched nor counted as those of the next: lists are appended to, a file that is in them already is not
/// listed again and keeps its details, which the host must therefore not have deleted.
class AddFilesParams {
  public:
    /// Makes a used record fresh: deletes the details that it still holds and makes every result what it is
    /// in a new record. Inputs stay. A host that has taken objects out of lasFileDetails or rasterFileDetails
    /// to keep them erases those entries first.
    void ClearResults();

    // Inputs.
    /// Asked for the user's account, on the thread of the call; null: the object of kApplicationClass is.
    /// Owned by the host.
    orvex::OrvexApplication* hostApplication = nullptr;
    /// Index of the initial tab among those that exist.
    std::int32_t initialTab = 0;
    /// Layers of the project that LAS files can be appended to: name to CRS as WKT, empty without one.
    std::map<std::wstring, std::wstring> existingLasLayers;

    // LAS results.
    /// Files to add; not those that could not be opened.
    FilesByFolder lasFiles;
    /// Full path of each file in lasFiles to its details, owned by the host.
    std::map<std::wstring, orvex::LasFileInfo*> lasFileDetails;

    // Inputs: optional tabs; the LAS tab always exists. The order differs on purpose from that of the tabs.
    bool showRasterTab = false;
    bool showPhotoTab = false;
    bool showFeatureTab = false;
    bool showDemTab = false;
    bool showCloudTab = false;

    // LAS results: options.
    bool lasOpenSetting = false;    ///< true: open read-write
    bool lasLoadSetting = false;    ///< true: load footprints only
    bool lasAppend = false;         ///< append the files to compatible layers
    std::uint16_t lasThinning = 0;  ///< keep every n-th point; 2 to 256
    /// kPyramidNone and the like, as chosen; kPyramidOrvexLas cannot be built into files opened read-only.
    std::int32_t lasPyramidType = 0;
    bool convertExistingQvr = false;        ///< ".qvr" companions become OrvexLAS companions
    std::int32_t orvexLasBackupOption = 0;  ///< kOverwriteOriginals and the like
    bool orvexLasOverwritePending = false;  ///< existing companions will be overwritten without a backup
    bool reCreateOrvexLas = false;          ///< recreate existing companions

    /// Input: the same as existingLasLayers, for rasters.
    std::map<std::wstring, std::wstring> existingRasterLayers;

    // Raster results.
    /// Every listed file; one that could not be described has neither details nor a layer.
    FilesByFolder rasterFiles;
    /// Full path to the file's details, owned by the host.
    std::map<std::wstring, orvex::RasterFileInfo*> rasterFileDetails;
    bool rasterAppend = false;   ///< append the files to compatible layers
    bool rasterPyramid = false;  ///< build pyramids

    // Feature results.
    /// Kinds of geometry to take from CAD and KML files.
    bool featureImportPoints = false;
    bool featureImportLines = false;
    bool featureImportPolygons = false;
    bool featureImportText = false;
    std::wstring featureOutputFolder;  ///< resolved, exists; empty if no CAD or KML file was chosen
    /// Input: feature layers of the project, as existingLasLayers; a shapefile of such a name cannot be
    /// loaded.
    std::map<std::wstring, std::wstring> existingFeatureLayers;
    /// Key of a loadable file to its full path: a shapefile's layer name, another file's name without its
    /// extension; a key that is taken already, in any letter case, gets " (2)" and so on.
    std::map<std::wstring, std::wstring> featureFiles;
    bool featureRequireCrs = false;  ///< files without a CRS were not loadable

    // DEM results: files to be converted to LAS files by the host.
    /// Every listed file; one that could not be described has no layer.
    FilesByFolder demFiles;
    bool demOpenReadWrite = false;                 ///< open the LAS files read-write
    bool demAppend = false;                        ///< append them to compatible LAS layers
    std::int32_t demLasVersion = 0;                ///< 0, 1, 3, 4, 5 for LAS 1.0 to 1.4
    std::int32_t demPointFormat = 0;               ///< 0 to 8
    bool demPyramid = false;                       ///< build companions of the LAS files
    std::uint16_t demThinning = 0;                 ///< one of so many pixels becomes a point; 2 to 256
    std::wstring demLasFolder;                     ///< as typed; may hold the project-path token
    std::array<std::int32_t, 5> demExtraValues{};  ///< zeros

    // Photo results.
    /// Full paths of the photos whose metadata could be read, in grid order.
    std::vector<std::wstring> photoFiles;

    // Cloud results, keyed by layer name.
    std::map<std::wstring, std::wstring> presignedUrlLayers;  ///< to the URL as typed, with its signature
    std::map<std::wstring, std::wstring> cloudLasLayers;      ///< to the layer's URL
    /// Of the layers in cloudLasLayers: the grid's ninth and tenth cell, behind the URL.
    std::map<std::wstring, std::wstring> cloudLasLayerValues2;
    std::map<std::wstring, std::wstring> cloudLasLayerValues3;

    // LAS results: options without a stored setting, for hosts that honour them.
    bool lasIgnoreIncompatibleCrs = false;  ///< the CRS of a layer did not matter to lasFileLayers
    /// Load files whose details say that they are damaged, as far as possible; else they are to be left out.
    bool lasLoadCorruptFiles = false;
    /// Full path of a file in lasFiles to the layer it was assigned to (an existing one when appending, else
    /// a new name).
    std::map<std::wstring, std::wstring> lasFileLayers;

    /// Results: the same for rasterFiles and demFiles.
    std::map<std::wstring, std::wstring> rasterFileLayers;
    std::map<std::wstring, std::wstring> demFileLayers;
    /// Input: initial folder of the raster and DEM file pickers; empty: the system's choice.
    std::wstring initialFolder;
    /// DEM result: converted files get no CRS.
    bool demIgnoreCrs = false;

    /// Input: files and folders that are added when the dialog opens, each to the page that takes it: the one
    /// shown first, else the first that lists such files.
    std::vector<std::wstring> initialPaths;

    /// Inputs: full paths of the files that the project's layers of each kind have already. They are marked
    /// when they are listed; the host still gets them, and decides.
    std::vector<std::wstring> existingLasFiles;
    std::vector<std::wstring> existingRasterFiles;
    std::vector<std::wstring> existingFeatureFiles;
    std::vector<std::wstring> existingPhotoFiles;

    /// Photo result: path of the existing photo layer that the photos go to, as the user typed it; empty: a
    /// new layer.
    std::wstring photoLayer;
    /// Photo result: photos that the layer holds already get new records in place of the old ones; else they
    /// are left out.
    bool photoReplaceExisting = false;
};

inline void AddFilesParams::ClearResults() {
    for (const auto& [path, details] : lasFileDetails) {
        delete details;
    }
    for (const auto& [path, details] : rasterFileDetails) {
        delete details;
    }
    AddFilesParams fresh;
    fresh.hostApplication = hostApplication;
    fresh.initialTab = initialTab;
    fresh.showRasterTab = showRasterTab;
    fresh.showPhotoTab = showPhotoTab;
    fresh.showFeatureTab = showFeatureTab;
    fresh.showDemTab = showDemTab;
    fresh.showCloudTab = showCloudTab;
    fresh.existingLasLayers = std::move(existingLasLayers);
    fresh.existingRasterLayers = std::move(existingRasterLayers);
    fresh.existingFeatureLayers = std::move(existingFeatureLayers);
    fresh.initialFolder = std::move(initialFolder);
    fresh.initialPaths = std::move(initialPaths);
    fresh.existingLasFiles = std::move(existingLasFiles);
    fresh.existingRasterFiles = std::move(existingRasterFiles);
    fresh.existingFeatureFiles = std::move(existingFeatureFiles);
    fresh.existingPhotoFiles = std::move(existingPhotoFiles);
    *this = std::move(fresh);
}
