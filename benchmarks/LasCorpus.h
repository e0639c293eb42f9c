#pragma once
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::bench {

/// Many LAS files with twenty different WKTs, in a folder of their own that goes with this object.
class LasCorpus {
  public:
    explicit LasCorpus(std::size_t files);
    ~LasCorpus();
    LasCorpus(const LasCorpus&) = delete;
    LasCorpus& operator=(const LasCorpus&) = delete;

    const std::filesystem::path& Folder() const { return folder_; }
    const std::vector<std::wstring>& Paths() const { return paths_; }

  private:
    std::filesystem::path folder_;
    std::vector<std::wstring> paths_;
};

}  // namespace orvex::bench
