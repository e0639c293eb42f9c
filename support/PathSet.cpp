#include "support/PathSet.h"

#include <algorithm>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {

bool PathSet::Contains(const std::wstring& path) const {
    const auto [first, last] = pathOfKey_.equal_range(PathKey(path));
    const auto isThis = [&path](const auto& entry) { return entry.second == path; };
    return std::any_of(first, last, isThis) || std::any_of(first, last, [&path](const auto& entry) {
               return KindOf(path) == FileKind::Missing || KindOf(entry.second) == FileKind::Missing ||
                      IsSameFile(path, entry.second);
           });
}

bool PathSet::Insert(const std::wstring& path) {
    const bool isNew = !Contains(path);
    if (isNew) {
        pathOfKey_.emplace(PathKey(path), path);
    }
    return isNew;
}

}  // namespace orvex
