#include <algorithm>

#include "support/Drives.h"
#include "support/Text.h"

namespace orvex {
namespace {

// The end of the part that begins at `from`.
std::size_t EndOfPart(const std::wstring& path, std::size_t from) {
    return std::min(path.find(L'\\', from), path.size());
}

// "\\server\share", "C:", or the volume of "\\?\Volume{...}\"; of a path in its long form as of the short
// one. A letter that stands for a share is a drive of its own: asking for the share may take its time.
std::wstring DriveOf(const std::wstring& folder) {
    std::wstring path = PathKey(folder);  // upper-cased, with backslashes
    if (path.starts_with(LR"(\\?\UNC\)")) {
        path.replace(0, 7, L"\\");
    } else if (path.starts_with(LR"(\\?\)")) {
        path.erase(0, 4);
    }
    const bool isShare = path.size() > 2 && path.starts_with(LR"(\\)");
    const std::size_t server = EndOfPart(path, isShare ? 2 : 0);
    const std::size_t end = isShare && server < path.size() ? EndOfPart(path, server + 1) : server;
    return path.substr(0, end);
}

}  // namespace

DriveFinder FindDrivesByName() {
    return DriveOf;
}

}  // namespace orvex
