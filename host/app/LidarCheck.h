#pragma once
#include <set>
#include <string>

class AddFilesParams;

namespace orvex {

struct Project;

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
