#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// What the paths of a command line name.
struct InputPaths {
    std::vector<std::wstring> files;    ///< in the order given; those of a folder in natural order
    std::vector<std::wstring> missing;  ///< paths that do not exist or cannot be looked at
};

/// Files as they are; folders searched with their subfolders for files whose names pass `isSearched`. Links
/// to folders are not followed (they can lead in circles); a subfolder that cannot be read is passed over.
InputPaths CollectInputPaths(const std::vector<std::wstring>& paths,
                             const std::function<bool(std::wstring_view path)>& isSearched);

}  // namespace orvex
