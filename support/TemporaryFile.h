#pragma once
#include <string>

#include "support/Files.h"

namespace orvex {

/// Name for writing a file beside its target; the file is removed unless it is committed.
class TemporaryFile {
  public:
    /// Chooses the name; creates nothing.
    explicit TemporaryFile(const std::wstring& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::wstring& Path() const { return path_; }
    /// Renames the file to its target, replacing an existing one.
    SystemError Commit();
    /// Renames the file to a free name beside the target; `taken` tells whether the name not being free was
    /// the failure.
    SystemError CommitTo(const std::wstring& freeName, bool& taken);

  private:
    std::wstring target_;
    std::wstring path_;
    bool committed_ = false;
};

}  // namespace orvex
