#include "record/RecordMembers.h"

#include <algorithm>

namespace orvex {
namespace {

using Record = AddFilesParams;
constexpr MemberUse kInput = MemberUse::Input;
constexpr MemberUse kResult = MemberUse::Result;

constexpr RecordMember kMembers[] = {
    // clang-format off
    {"hostApplication", kInput, &Record::hostApplication, "cloud", "",
     "Object that is asked for the signed-in user's account, on the thread of the call; null: the registered one. Owned by the host."},
    {"initialTab", kInput, &Record::initialTab, "all", "from 0",
     "Index of the initial tab among those that exist."},
    {"existingLasLayers", kInput, &Record::existingLasLayers, "LAS, DEM", "",
     "Layers of the project that LAS files can be appended to: name to CRS as WKT, empty without one."},
    {"lasFiles", kResult, &Record::lasFiles, "LAS", "", "Files to add, not those that could not be opened: folder, without a trailing separator, to the names of the files in it, in grid order."},
    {"lasFileDetails", kResult, &Record::lasFileDetails, "LAS", "",
     "Full path of each file in `lasFiles` to what was read of it. Objects in C++, which the host owns and deletes."},
    {"showRasterTab", kInput, &Record::showRasterTab, "raster", "", "The raster tab exists."},
    {"showPhotoTab", kInput, &Record::showPhotoTab, "photo", "", "The photo tab exists."},
    {"showFeatureTab", kInput, &Record::showFeatureTab, "feature", "", "The feature tab exists."},
    {"showDemTab", kInput, &Record::showDemTab, "DEM", "", "The DEM tab exists."},
    {"showCloudTab", kInput, &Record::showCloudTab, "cloud", "", "The cloud tab exists."},
    {"lasOpenSetting", kResult, &Record::lasOpenSetting, "LAS", "", "Open the files read-write."},
    {"lasLoadSetting", kResult, &Record::lasLoadSetting, "LAS", "", "Load footprints only."},
    {"lasAppend", kResult, &Record::lasAppend, "LAS", "", "Append the files to compatible layers."},
    {"lasThinning", kResult, &Record::lasThinning, "LAS", "2 to 256", "Keep every n-th point."},
    {"lasPyramidType", kResult, &Record::lasPyramidType, "LAS", "0 to 2",
     "Companion index to build: 0 none, 1 OrvexLAS (not into files opened read-only), 2 QVR."},
    {"convertExistingQvr", kResult, &Record::convertExistingQvr, "LAS", "",
     "\".qvr\" companions become OrvexLAS companions."},
    {"orvexLasBackupOption", kResult, &Record::orvexLasBackupOption, "LAS", "0 to 2",
     "The original files when OrvexLAS files are written: 0 overwritten, 1 backed up, 2 backed up and compressed."},
    {"orvexLasOverwritePending", kResult, &Record::orvexLasOverwritePending, "LAS", "",
     "Existing companions will be overwritten without a backup."},
    {"reCreateOrvexLas", kResult, &Record::reCreateOrvexLas, "LAS", "", "Recreate existing companions."},
    {"existingRasterLayers", kInput, &Record::existingRasterLayers, "raster", "",
     "Layers of the project that rasters can be appended to: name to CRS as WKT, empty without one."},
    {"rasterFiles", kResult, &Record::rasterFiles, "raster", "",
     "Every listed file, as in `lasFiles`; one that could not be described has neither details nor a layer."},
    {"rasterFileDetails", kResult, &Record::rasterFileDetails, "raster", "",
     "Full path of each described file in `rasterFiles` to what was read of it. Objects in C++, which the host owns and deletes."},
    {"rasterAppend", kResult, &Record::rasterAppend, "raster", "", "Append the files to compatible layers."},
    {"rasterPyramid", kResult, &Record::rasterPyramid, "raster", "", "Build pyramids."},
    {"featureImportPoints", kResult, &Record::featureImportPoints, "feature", "", "Take points from CAD and KML files."},
    {"featureImportLines", kResult, &Record::featureImportLines, "feature", "", "Take lines from CAD and KML files."},
    {"featureImportPolygons", kResult, &Record::featureImportPolygons, "feature", "", "Take polygons from CAD and KML files."},
    {"featureImportText", kResult, &Record::featureImportText, "feature", "", "Take texts from CAD and KML files."},
    {"featureOutputFolder", kResult, &Record::featureOutputFolder, "feature", "", "Folder for converted files, resolved, which exists; empty if no CAD or KML file was chosen."},
    {"existingFeatureLayers", kInput, &Record::existingFeatureLayers, "feature", "",
     "Feature layers of the project: name to CRS as WKT. A shapefile whose layer name is among them cannot be loaded."},
    {"featureFiles", kResult, &Record::featureFiles, "feature", "",
     "Key of each loadable file to its full path: a shapefile's layer name, another file's name without its extension; a key that is taken already, in any letter case, gets \" (2)\" and so on."},
    {"featureRequireCrs", kResult, &Record::featureRequireCrs, "feature", "", "Files without a CRS were not loadable."},
    {"demFiles", kResult, &Record::demFiles, "DEM", "", "Every listed file, to be converted to a LAS file by the host, as in `lasFiles`; one that could not be described has no layer."},
    {"demOpenReadWrite", kResult, &Record::demOpenReadWrite, "DEM", "", "Open the LAS files read-write."},
    {"demAppend", kResult, &Record::demAppend, "DEM", "", "Append the LAS files to compatible LAS layers."},
    {"demLasVersion", kResult, &Record::demLasVersion, "DEM", "0, 1, 3, 4 or 5", "Version of the LAS files, for 1.0 to 1.4."},
    {"demPointFormat", kResult, &Record::demPointFormat, "DEM", "0 to 8", "Point record format of the LAS files."},
    {"demPyramid", kResult, &Record::demPyramid, "DEM", "", "Build companions of the LAS files."},
    {"demThinning", kResult, &Record::demThinning, "DEM", "2 to 256", "One of so many pixels becomes a point."},
    {"demLasFolder", kResult, &Record::demLasFolder, "DEM", "", "Folder for the LAS files as typed; may begin with the token \"<ORVEX_PROJECT_PATH>\"."},
    {"demExtraValues", kResult, &Record::demExtraValues, "DEM", "", "Zeros."},
    {"photoFiles", kResult, &Record::photoFiles, "photo", "", "Full paths of the photos whose metadata could be read, in grid order."},
    {"presignedUrlLayers", kResult, &Record::presignedUrlLayers, "cloud", "", "Layer name to its URL as typed, with its signature."},
    {"cloudLasLayers", kResult, &Record::cloudLasLayers, "cloud", "", "Layer name to the layer's URL."},
    {"cloudLasLayerValues2", kResult, &Record::cloudLasLayerValues2, "cloud", "",
     "Layer name to the grid's ninth cell, for each layer in `cloudLasLayers`."},
    {"cloudLasLayerValues3", kResult, &Record::cloudLasLayerValues3, "cloud", "",
     "Layer name to the grid's tenth cell, for each layer in `cloudLasLayers`."},
    {"lasIgnoreIncompatibleCrs", kResult, &Record::lasIgnoreIncompatibleCrs, "LAS", "", "The CRS of a layer did not matter to `lasFileLayers`."},
    {"lasLoadCorruptFiles", kResult, &Record::lasLoadCorruptFiles, "LAS", "",
     "Load files whose details say that they are damaged, as far as possible; else they are to be left out."},
    {"lasFileLayers", kResult, &Record::lasFileLayers, "LAS", "",
     "Full path of each file in `lasFiles` to its layer: an existing one when appending, else a new name."},
    {"rasterFileLayers", kResult, &Record::rasterFileLayers, "raster", "", "The same for `rasterFiles`."},
    {"demFileLayers", kResult, &Record::demFileLayers, "DEM", "", "The same for `demFiles`."},
    {"initialFolder", kInput, &Record::initialFolder, "raster, DEM", "",
     "Initial folder of the file pickers; empty: the system's choice."},
    {"demIgnoreCrs", kResult, &Record::demIgnoreCrs, "DEM", "", "The LAS files get no CRS."},
    {"initialPaths", kInput, &Record::initialPaths, "all", "",
     "Files and folders that are added when the dialog opens, each to the tab that takes it: the one shown first, else the first that lists such files."},
    {"existingLasFiles", kInput, &Record::existingLasFiles, "LAS", "",
     "Full paths of the files that the project's layers have already. They are marked when they are listed; the host still gets them, and decides."},
    {"existingRasterFiles", kInput, &Record::existingRasterFiles, "raster", "", "The same for rasters."},
    {"existingFeatureFiles", kInput, &Record::existingFeatureFiles, "feature", "", "The same for feature files."},
    {"existingPhotoFiles", kInput, &Record::existingPhotoFiles, "photo", "", "The same for photos."},
    {"photoLayer", kResult, &Record::photoLayer, "photo", "",
     "Path of the existing photo layer that the photos go to, as typed; empty: a new layer."},
    {"photoReplaceExisting", kResult, &Record::photoReplaceExisting, "photo", "",
     "Photos that the layer holds already get new records in place of the old ones; else they are left out."},
    // clang-format on
};

}  // namespace

std::span<const RecordMember> RecordMembers() {
    return kMembers;
}

const RecordMember* FindRecordMember(std::string_view name) {
    const auto* const found = std::ranges::find(
        kMembers, name, [](const RecordMember& member) { return std::string_view(member.name); });
    return found == std::end(kMembers) ? nullptr : found;
}

}  // namespace orvex
