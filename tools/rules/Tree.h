#pragma once
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tools/rules/SourceText.h"

namespace orvex::rules {

/// Files of a source tree. Paths are relative to its root, with "/".
struct Tree {
    std::vector<std::string> files;  ///< every file, sorted; without hidden folders and build folders
    std::map<std::string, SourceText> sources;  ///< the C++ files among them
};

Tree ReadTree(const std::filesystem::path& root);

}  // namespace orvex::rules
