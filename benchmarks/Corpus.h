#pragma once
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace orvex::bench {

/// Many files with twenty different contents, in a folder of their own that goes with this object.
class Corpus {
  public:
    const std::filesystem::path& Folder() const { return folder_; }
    const std::vector<std::wstring>& Paths() const { return paths_; }

    ~Corpus();
    Corpus(const Corpus&) = delete;
    Corpus& operator=(const Corpus&) = delete;

    static constexpr std::size_t kVariants = 20;

    struct Kind {
        std::string extension;       ///< with its dot
        std::size_t filesPerFolder;  ///< of the files; all of them may lie in one folder
        /// Writes the file of one of the contents.
        std::function<void(const std::filesystem::path&, std::size_t variant)> write;
    };
    Corpus(std::size_t files, const Kind& kind);

  private:
    std::filesystem::path folder_;
    std::vector<std::wstring> paths_;
};

/// LAS files with different WKTs, a thousand to a folder.
Corpus LasCorpus(std::size_t files);

/// Small GeoTIFFs with different coordinate systems, all in one folder.
Corpus RasterCorpus(std::size_t files);

}  // namespace orvex::bench
