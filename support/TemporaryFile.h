#pragma once
#include <string>

#include "support/Files.h"

namespace orvex {

/// File that is written beside its target and removed unless it is committed. Files of this kind that killed
/// processes have left in the folder are removed, with what has been made under their names and a further
/// extension.
class TemporaryFile {
  public:
    /// Makes an empty file. If the folder refuses, CreationError tells why, and so does opening the file.
    explicit TemporaryFile(const std::wstring& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::wstring& Path() const { return path_; }
    SystemError CreationError() const { return creationError_; }
    /// Renames the file to its target, replacing an existing one.
    SystemError Commit();
    /// Renames the file to a free name beside the target; `taken` tells whether the name not being free was
    /// the failure.
    SystemError CommitTo(const std::wstring& freeName, bool& taken);

  private:
    SystemError Committed(SystemError error);

    std::wstring target_;
    std::wstring path_;
    OwnedFile file_;
    SystemError creationError_ = 0;
    bool committed_ = false;
};

}  // namespace orvex
