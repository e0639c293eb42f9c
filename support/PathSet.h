#pragma once
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>

#include "support/Text.h"

namespace orvex {

/// True if two paths that differ in letter case alone name one file: they do unless both exist and are two,
/// as on a system that tells case apart.
bool IsSameInAnyCase(const std::wstring& a, const std::wstring& b);

/// Values by full path. Paths that differ in letter case alone are one path as long as they name one file.
template <typename Value>
class PathMap {
  public:
    /// Null if the path is not in the map. Looks at files on the disk only for a path that is known in other
    /// letters.
    const Value* Find(const std::wstring& path) const {
        const auto [first, last] = entries_.equal_range(PathKey(path));
        for (auto entry = first; entry != last; ++entry) {
            if (entry->second.first == path) {
                return &entry->second.second;
            }
        }
        for (auto entry = first; entry != last; ++entry) {
            if (IsSameInAnyCase(path, entry->second.first)) {
                return &entry->second.second;
            }
        }
        return nullptr;
    }
    /// False if the path is in the map already.
    bool Insert(const std::wstring& path, Value value) {
        const bool isNew = Find(path) == nullptr;
        if (isNew) {
            entries_.emplace(PathKey(path), std::pair(path, std::move(value)));
        }
        return isNew;
    }

  private:
    std::unordered_multimap<std::wstring, std::pair<std::wstring, Value>> entries_;
};

/// Set of files by full path; see PathMap.
class PathSet {
  public:
    bool Contains(const std::wstring& path) const { return paths_.Find(path) != nullptr; }
    /// False if the file is in the set already.
    bool Insert(const std::wstring& path) { return paths_.Insert(path, {}); }

  private:
    PathMap<std::monostate> paths_;
};

}  // namespace orvex
