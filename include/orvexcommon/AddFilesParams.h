#pragma once
// The record that the host passes to ShowAddFilesDialog and reads afterwards.
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvex {
class OrvexApplication;
class LasFileInfo;
class RasterFileInfo;

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

/// Inputs are set by the host before the call; results are written only if the dialog ends with OK. The host
/// creates, owns and destroys the record, and after OK owns and deletes the objects in lasFileDetails and
/// rasterFileDetails.
///
/// Pass a fresh record to each call. Results of an earlier call are neither touched nor counted as those of
/// the next: lists are appended to, a file that is in them already is not listed again and keeps its details,
/// which the host must therefore not have deleted.
class AddFilesParams {
  public:
    // Inputs.
    /// Asked for the user's account, on the thread of the call; null: the object of kApplicationClass is.
    /// Owned by the host.
    orvex::OrvexApplication* hostApplication = nullptr;
    /// Index of the initial tab among those that exist.
    std::int32_t initialTab = 0;
    /// Layers of the project that LAS files can be appended to: name to CRS as WKT, empty without one.
    std::map<std::wstring, std::wstring> existingLasLayers;

    // LAS results.
    FilesByFolder lasFiles;
    /// Full path to the file's details, owned by the host.
    std::map<std::wstring, orvex::LasFileInfo*> lasFileDetails;

    // Optional tabs; the LAS tab always exists. The order differs on purpose from that of the tabs.
    bool showRasterTab = false;
    bool showPhotoTab = false;
    bool showFeatureTab = false;
    bool showDemTab = false;
    bool showCloudTab = false;

    // LAS load options.
    bool lasOpenSetting = false;    ///< true: open read-write
    bool lasLoadSetting = false;    ///< true: load footprints only
    bool lasAppend = false;         ///< append the files to compatible layers
    std::uint16_t lasThinning = 0;  ///< 2 to 256
    /// kPyramidNone and the like, as chosen; kPyramidOrvexLas cannot be built into files opened read-only.
    std::int32_t lasPyramidType = 0;
    bool convertExistingQvr = false;        ///< ".qvr" companions become OrvexLAS companions
    std::int32_t orvexLasBackupOption = 0;  ///< kOverwriteOriginals and the like
    bool orvexLasOverwritePending = false;  ///< existing companions will be overwritten without a backup
    bool reCreateOrvexLas = false;          ///< recreate existing companions

    // Raster input and results.
    /// Input: the same as existingLasLayers, for rasters.
    std::map<std::wstring, std::wstring> existingRasterLayers;
    /// Every listed file; one that could not be described has neither details nor a layer.
    FilesByFolder rasterFiles;
    /// Full path to the file's details, owned by the host.
    std::map<std::wstring, orvex::RasterFileInfo*> rasterFileDetails;
    bool rasterAppend = false;   ///< append the files to compatible layers
    bool rasterPyramid = false;  ///< build pyramids

    // Feature results.
    bool featureImportPoints = false;
    bool featureImportLines = false;
    bool featureImportPolygons = false;
    bool featureImportText = false;
    std::wstring featureOutputFolder;  ///< resolved; empty if no CAD or KML file was chosen
    std::map<std::wstring, std::wstring> existingFeatureLayers;  ///< input
    /// Key of a loadable file to its full path: a shapefile's layer name, another file's name without its
    /// extension; a key that is taken already, in any letter case, gets " (2)" and so on.
    std::map<std::wstring, std::wstring> featureFiles;
    bool featureRequireCrs = false;

    // DEM results.
    /// Every listed file; one that could not be described has no layer.
    FilesByFolder demFiles;
    bool demOpenReadWrite = false;
    bool demAppend = false;
    std::int32_t demLasVersion = 0;   ///< 0, 1, 3, 4, 5 for LAS 1.0 to 1.4
    std::int32_t demPointFormat = 0;  ///< 0 to 8
    bool demPyramid = false;
    std::uint16_t demThinning = 0;  ///< 2 to 256
    std::wstring demLasFolder;      ///< as typed; may hold the project-path token
    std::array<std::int32_t, 5> demExtraValues{};

    // Photo results: full paths in grid order.
    std::vector<std::wstring> photoFiles;

    // Cloud results, keyed by layer name.
    std::map<std::wstring, std::wstring> presignedUrlLayers;  ///< to the URL
    std::map<std::wstring, std::wstring> cloudLasLayers;      ///< to the layer's URL
    /// The grid's ninth and tenth cell, behind the URL.
    std::map<std::wstring, std::wstring> cloudLasLayerValues2;
    std::map<std::wstring, std::wstring> cloudLasLayerValues3;

    // LAS options without a stored setting, for hosts that honour them.
    bool lasIgnoreIncompatibleCrs = false;
    /// Load files whose details say that they are damaged, as far as possible; else they are to be left out.
    bool lasLoadCorruptFiles = false;
    /// Full path of a file in lasFiles to the layer it was assigned to (an existing one when appending, else
    /// a new name).
    std::map<std::wstring, std::wstring> lasFileLayers;

    /// The same for rasterFiles and demFiles.
    std::map<std::wstring, std::wstring> rasterFileLayers;
    std::map<std::wstring, std::wstring> demFileLayers;
    /// Input: initial folder of the raster and DEM file pickers; empty: the system's choice.
    std::wstring initialFolder;
    /// Converted DEM files get no CRS.
    bool demIgnoreCrs = false;

    /// Input: files and folders that are added when the dialog opens, each to the page that takes it: the one
    /// shown first, else the first that lists such files.
    std::vector<std::wstring> initialPaths;

    /// Input: full paths of the files that the project's layers of each kind have already. They are marked
    /// when they are listed; the host still gets them, and decides.
    std::vector<std::wstring> existingLasFiles;
    std::vector<std::wstring> existingRasterFiles;
    std::vector<std::wstring> existingFeatureFiles;
    std::vector<std::wstring> existingPhotoFiles;

    /// Path of the existing photo layer that the photos go to, as the user typed it; empty: a new layer.
    std::wstring photoLayer;
    /// Photos that the layer holds already get new records in place of the old ones; else they are left out.
    bool photoReplaceExisting = false;
};
