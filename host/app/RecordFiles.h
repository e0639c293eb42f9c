#pragma once
// The files of a record as the project takes them, and what is wrong with them.
#include <set>
#include <string>
#include <vector>

#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// A folder and a name as a full path.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

/// The LAS files with the layers that the dialog assigned them to, without those whose full path is in
/// `skipped`.
std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const std::set<std::wstring>& skipped);
/// The same for the rasters. A raster without details, which could not be read, keeps its name only.
std::vector<NewFile> RasterFilesOf(const AddFilesParams& record);

/// The layer that the dialog assigned a file of a kind to; `otherwise` when it assigned none.
std::wstring LayerNameOf(const std::map<std::wstring, std::wstring>& layerOfFile, const std::wstring& path,
                         const std::wstring& otherwise);

/// The details objects of a record belong to the host once the dialog ended with OK; this deletes them.
void DeleteDetails(AddFilesParams& record);

/// The host's findings about the LiDAR files of a record, in the order in which MessageRegardingAddingLidar
/// takes them.
struct LidarReport {
    bool appending = false;  ///< a: at least one file goes to a layer that the project has already
    /// b: a file has another CRS than the layer it goes to, or than the others of its new layer.
    bool crsDiffers = false;
    bool crsMissing = false;         ///< c: a file has no CRS
    bool damaged = false;            ///< d: the header of a file cannot be true (no extent, no details)
    bool tellSkipped = false;        ///< e: the user is to be told of files that are skipped
    bool alreadyThere = false;       ///< f: the project holds a file already
    bool unreadable = false;         ///< g: a file can no longer be opened
    std::set<std::wstring> skipped;  ///< full paths of the files of f and g
};

/// Compares the record with the project and looks at each file.
LidarReport CheckLidar(const Project& project, const AddFilesParams& record);

}  // namespace orvex
