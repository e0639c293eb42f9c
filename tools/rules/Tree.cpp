#include "tools/rules/Tree.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace orvex::rules {
namespace {

namespace fs = std::filesystem;

bool IsSkipped(const fs::path& folder, bool isTopLevel) {
    const std::string name = folder.filename().string();
    return name.starts_with('.') || (isTopLevel && name == "build");
}

std::string ReadAll(const fs::path& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

}  // namespace

Tree ReadTree(const fs::path& root) {
    Tree tree;
    auto walk = fs::recursive_directory_iterator(root);
    for (auto entry = begin(walk); entry != end(walk); ++entry) {
        if (entry->is_directory()) {
            if (IsSkipped(entry->path(), entry.depth() == 0)) {
                entry.disable_recursion_pending();
            }
            continue;
        }
        const std::string name = entry->path().lexically_relative(root).generic_string();
        tree.files.push_back(name);
        if (name.ends_with(".cpp") || name.ends_with(".h")) {
            tree.sources.emplace(name, ReadSource(ReadAll(entry->path())));
        }
    }
    std::ranges::sort(tree.files);
    return tree;
}

}  // namespace orvex::rules
