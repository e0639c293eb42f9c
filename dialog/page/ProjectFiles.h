#pragma once
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "support/PathSet.h"

namespace orvex {

/// The files that the project has already. Safe from any thread.
class ProjectFiles {
  public:
    /// `paths`: full ones. `buddy`: as AddingDescription::buddy.
    ProjectFiles(std::vector<std::wstring> paths, std::function<std::wstring(const std::wstring& path)> buddy)
        : paths_(std::move(paths)), buddy_(std::move(buddy)) {}

    /// True if the project has the file, under its own path or its buddy's. The first call takes a while when
    /// they are many.
    bool Has(const std::wstring& path) {
        std::call_once(once_, [this] {
            for (const std::wstring& known : std::exchange(paths_, {})) {
                set_.Insert(known);
            }
        });
        return set_.Contains(path) || (buddy_ && set_.Contains(buddy_(path)));
    }

  private:
    std::once_flag once_;
    std::vector<std::wstring> paths_;  ///< empty once they are in the set
    PathSet set_;
    const std::function<std::wstring(const std::wstring& path)> buddy_;
};

}  // namespace orvex
