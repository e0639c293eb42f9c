#pragma once
// Files of a record in the project's terms, findings about them, and the record as text.
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// Full path of a file in a folder.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

/// Number of files in lists of a record.
std::size_t CountFiles(const std::map<std::wstring, std::vector<std::wstring>>& files);

/// Full paths of files, each with the reason why it is not added.
using LeftOutFiles = std::map<std::wstring, std::wstring>;

/// LAS files in the order of the record, with the layers that the dialog assigned them to, except `leftOut`.
/// A file without details has only its path.
std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const LeftOutFiles& leftOut);
/// The same for the rasters that have details.
std::vector<NewFile> RasterFilesOf(const AddFilesParams& record);
/// Full paths of the rasters that the dialog could not describe.
std::vector<std::wstring> UndescribedRastersOf(const AddFilesParams& record);
/// Elevation rasters and the layers of their LAS files, in the order of the record.
std::vector<AssignedFile> DemFilesOf(const AddFilesParams& record);

/// Deletes the details objects of a record, which belong to the host once the dialog has ended with OK.
void DeleteDetails(AddFilesParams& record);

/// Findings about the LiDAR files of a record: flags of MessageRegardingAddingLidar. The dialog tells of
/// files without a CRS (c) and of damaged ones (d) before OK.
struct LidarReport {
    bool appending = false;     ///< a: a file goes to a layer that the project already has
    bool crsDiffers = false;    ///< b: a file's CRS differs from its layer's, or from the rest of a new layer
    bool alreadyThere = false;  ///< f, if no file is left to be added: the project already has a file
    bool unreadable = false;    ///< g, likewise: a file can no longer be opened
    bool nothingLeft = false;   ///< every file is left out
    LeftOutFiles leftOut;       ///< files of f and g, and those with errors that are not to be loaded
};

/// Compares the record with the project. `unreadable`: full paths of LAS files that can no longer be opened.
LidarReport CheckLidar(const Project& project, const AddFilesParams& record,
                       const std::set<std::wstring>& unreadable);

/// The record as text for the user: files by folder with their properties, the layers they go to, and the
/// options. Lines end in "\n".
std::wstring RecordText(const AddFilesParams& record);

}  // namespace orvex
