#include "benchmarks/Corpus.h"

#include <fmt/format.h>

#include <chrono>

#include "support/Text.h"

namespace orvex::bench {

namespace fs = std::filesystem;

Corpus::Corpus(std::size_t files, const Kind& kind)
    : folder_(fs::temp_directory_path() /
              fmt::format("orvex-bench-{}", std::chrono::steady_clock::now().time_since_epoch().count())) {
    fs::create_directories(folder_ / "variants");
    std::vector<fs::path> variants;
    for (std::size_t i = 0; i < kVariants; ++i) {
        variants.push_back(folder_ / "variants" / fmt::format("variant_{}{}", i, kind.extension));
        kind.write(variants.back(), i);
    }
    for (std::size_t i = 0; i < files; ++i) {
        const fs::path folder = folder_ / "files" / fmt::format("block_{:02}", i / kind.filesPerFolder);
        fs::create_directories(folder);
        const fs::path path = folder / fmt::format("tile_{:05}{}", i, kind.extension);
        fs::create_hard_link(variants[i % kVariants], path);
        paths_.push_back(FromPath(path));
    }
}

Corpus::~Corpus() {
    std::error_code error;
    fs::remove_all(folder_, error);
}

}  // namespace orvex::bench
