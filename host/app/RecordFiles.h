#pragma once
// Files of a record in the project's terms, findings about them, and the record as text.
#include <set>
#include <string>
#include <vector>

#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// Full path of a file in a folder.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

/// LAS files in the order of the record, with the layers that the dialog assigned them to, except those whose
/// full path is in `skipped`. A file without details has only its path.
std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const std::set<std::wstring>& skipped);
/// The same for the rasters that have details.
std::vector<NewFile> RasterFilesOf(const AddFilesParams& record);
/// Full paths of the rasters that the dialog could not describe.
std::vector<std::wstring> UndescribedRastersOf(const AddFilesParams& record);
/// Elevation rasters and the layers of their LAS files, in the order of the record.
std::vector<AssignedFile> DemFilesOf(const AddFilesParams& record);

/// Deletes the details objects of a record, which belong to the host once the dialog has ended with OK.
void DeleteDetails(AddFilesParams& record);

/// Findings about the LiDAR files of a record: the flags a to g of MessageRegardingAddingLidar.
struct LidarReport {
    bool appending = false;     ///< a: a file goes to a layer that the project already has
    bool crsDiffers = false;    ///< b: a file's CRS differs from its layer's, or from the rest of a new layer
    bool crsMissing = false;    ///< c: a file has no CRS
    bool damaged = false;       ///< d: a file has errors, no details, or no extent in its header
    bool tellSkipped = false;   ///< e: the user is to be told of skipped files
    bool alreadyThere = false;  ///< f: the project already has a file
    bool unreadable = false;    ///< g: a file can no longer be opened
    std::set<std::wstring> leftOut;  ///< full paths of files with errors that are not to be loaded
    std::set<std::wstring> skipped;  ///< full paths of the files of f and g, and of those left out
};

/// Compares the record with the project and looks at each file.
LidarReport CheckLidar(const Project& project, const AddFilesParams& record);

/// The record as text for the user: files by folder with their properties, the layers they go to, and the
/// options. Lines end in "\n".
std::wstring RecordText(const AddFilesParams& record);

}  // namespace orvex
