#pragma once
// LAS files of any size for benchmarks, and the copy that other work on them is compared with.
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvex::bench {

/// Folder for large files, in the system's folder for temporary files; removed with this object.
class BenchFolder {
  public:
    BenchFolder();
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    std::wstring Name(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

enum class PointLayout {
    Legacy,    ///< LAS 1.2, point format 1
    Extended,  ///< LAS 1.4, point format 6
};

/// Writes a flight over hills with buildings and trees, eight pulses a square metre, strip by strip and line
/// by line as a scanner records them; the same bytes every time. Throws std::runtime_error.
void WriteTerrain(const std::wstring& path, std::uint64_t points, PointLayout layout);

/// Writes the points of a LAS file over and over, side by side in a square, until there are so many. Throws
/// std::runtime_error.
void WriteRepeated(const std::wstring& tile, const std::wstring& path, std::uint64_t points);

/// Copies a file block by block and waits until the copy is on the disk, as for every file that a program
/// writes safely. False if that fails.
bool CopySequentially(const std::wstring& from, const std::wstring& to);

}  // namespace orvex::bench
