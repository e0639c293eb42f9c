#pragma once
#include <string>

#include "support/SystemError.h"

namespace orvex {

/// A file that is being written beside its target under a name of its own; removed unless it is committed.
class TemporaryFile {
  public:
    /// Chooses the name only; nothing is created.
    explicit TemporaryFile(const std::wstring& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::wstring& Path() const { return path_; }
    /// Renames the file to its target, replacing one that is there, unless that fails.
    SystemError Commit();
    /// Renames the file to a name beside the target that nothing has yet; `taken` says whether that was what
    /// failed.
    SystemError CommitTo(const std::wstring& freeName, bool& taken);

  private:
    std::wstring target_;
    std::wstring path_;
    bool committed_ = false;
};

}  // namespace orvex
