#pragma once
#include <filesystem>

namespace orvex {

/// A file that is being written beside its target under a name of its own; removed unless it is committed.
class TemporaryFile {
  public:
    /// Chooses the name only; nothing is created.
    explicit TemporaryFile(const std::filesystem::path& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    /// Renames the file to its target, replacing one that is there; the error of the system otherwise.
    std::error_code Commit();

  private:
    std::filesystem::path target_;
    std::filesystem::path path_;
    bool committed_ = false;
};

}  // namespace orvex
