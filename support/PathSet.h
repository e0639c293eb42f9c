#pragma once
#include <string>
#include <unordered_map>

namespace orvex {

/// Set of files by full path. Paths that differ in letter case alone name one file, unless both exist and are
/// two, as on a system that tells case apart.
class PathSet {
  public:
    /// Looks at files on the disk only for a path that is known in other letters.
    bool Contains(const std::wstring& path) const;
    /// False if the file is in the set already.
    bool Insert(const std::wstring& path);

  private:
    std::unordered_multimap<std::wstring, std::wstring> pathOfKey_;
};

}  // namespace orvex
