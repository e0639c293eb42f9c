#pragma once
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
    /// The full path of a name in the folder, as the component's wide text.
    std::wstring Name(const std::wstring& name) const;
    /// Writes a file (folders on the way are made) and returns its full path.
    std::wstring Write(const std::wstring& name, const std::string& bytes) const;

    /// How many files and folders lie in it, without those in its subfolders.
    std::size_t Entries() const;

  private:
    std::filesystem::path path_;
};

/// The whole content of a file; empty when it cannot be read.
std::string ReadFile(const std::wstring& path);

}  // namespace orvex::testing
