#include <algorithm>

#include "support/Drives.h"
#include "support/Text.h"

namespace orvex {
namespace {

// The end of the part that begins at `from`.
std::size_t EndOfPart(const std::wstring& path, std::size_t from) {
    return std::min(path.find_first_of(L"\\/", from), path.size());
}

bool IsSeparator(wchar_t letter) {
    return letter == L'\\' || letter == L'/';
}

// "\\server\share", "C:", or the volume of "\\?\Volume{...}\"; of a path in its long form as of the short
// one.
std::wstring DriveOf(std::wstring path) {
    if (path.starts_with(LR"(\\?\UNC\)")) {
        path.replace(0, 7, L"\\");
    } else if (path.starts_with(LR"(\\?\)")) {
        path.erase(0, 4);
    }
    const bool isShare = path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
    const std::size_t server = EndOfPart(path, isShare ? 2 : 0);
    const std::size_t end = isShare && server < path.size() ? EndOfPart(path, server + 1) : server;
    std::wstring drive = ToUpper(path.substr(0, end));
    std::ranges::replace(drive, L'/', L'\\');
    return drive;
}

}  // namespace

DriveFinder FindDrivesByName() {
    return DriveOf;
}

}  // namespace orvex
