#pragma once
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvex::testing {

/// A fresh folder for one test, removed with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    /// Full path of a name in the folder.
    std::wstring Name(const std::wstring& name) const;
    /// Writes a file, creating its folders, and returns its full path.
    std::wstring Write(const std::wstring& name, const std::string& bytes) const;

    /// Number of entries directly in it.
    std::size_t Entries() const;

  private:
    std::filesystem::path path_;
};

/// Content of a file; empty if it cannot be read.
std::string ReadFile(const std::wstring& path);

/// Overwrites bytes of an existing file; throws if that fails.
void WriteAt(const std::wstring& path, std::uint64_t offset, const std::string& bytes);

}  // namespace orvex::testing
