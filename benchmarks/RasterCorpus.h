#pragma once
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::bench {

/// Many small GeoTIFFs with twenty different coordinate systems, all in one folder that goes with this
/// object.
class RasterCorpus {
  public:
    explicit RasterCorpus(std::size_t files);
    ~RasterCorpus();
    RasterCorpus(const RasterCorpus&) = delete;
    RasterCorpus& operator=(const RasterCorpus&) = delete;

    const std::filesystem::path& Folder() const { return folder_; }
    const std::vector<std::wstring>& Paths() const { return paths_; }

  private:
    std::filesystem::path folder_;
    std::vector<std::wstring> paths_;
};

}  // namespace orvex::bench
