#pragma once
// What the benchmark programs share: command line, timing, figures and files to measure.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "benchmarks/Probe.h"

namespace orvex::bench {

struct BenchOptions {
    std::string output;                 ///< JSON file for the figures; empty for none
    std::size_t files = 0;              ///< files to measure with
    std::vector<std::uint64_t> points;  ///< sizes of files to measure with
    std::string tile;                   ///< LAS file to make those files of; empty for generated terrain
};

/// Parses "[--files N] [--points N[,N...]] [--tile FILE] [--output FILE]". The program has --files if there
/// is a default for it, --points and --tile if there is one for --points. nullopt for any other command line,
/// after its usage has gone to the standard error.
std::optional<BenchOptions> ParseBenchOptions(int argc, char** argv, BenchOptions defaults);
inline std::optional<BenchOptions> ParseBenchOptions(int argc, char** argv, std::size_t files = 0) {
    return ParseBenchOptions(argc, argv, BenchOptions{{}, files, {}, {}});
}

/// Duration of `run`, milliseconds.
template <typename Run>
double Milliseconds(const Run& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The best of several runs: milliseconds that passed, and those of all processors together.
struct Best {
    double time = std::numeric_limits<double>::infinity();
    double processor = std::numeric_limits<double>::infinity();

    template <typename Run>
    void Take(const Run& run) {
        const double before = ProcessorTime();
        time = std::min(time, Milliseconds(run));
        processor = std::min(processor, ProcessorTime() - before);
    }
};

/// Figures of a run, printed as they come ("figure<TAB>name<TAB>value<TAB>unit") and kept for a file.
class Figures {
  public:
    void Add(const std::string& name, double value, const std::string& unit);
    /// Writes a JSON array of {name, value, unit} under a temporary name and renames it; does nothing for an
    /// empty path. False if it cannot be written.
    bool Write(const std::string& path) const;

  private:
    struct Figure {
        std::string name;
        double value;
        std::string unit;
    };
    std::vector<Figure> figures_;
};

/// Many files with kVariants different contents, in a temporary folder that is removed with this object.
class Corpus {
  public:
    static constexpr std::size_t kVariants = 20;

    struct Kind {
        std::string extension;       ///< with its dot
        std::size_t filesPerFolder;  ///< at least 1
        /// Writes the file with the content number `variant`.
        std::function<void(const std::filesystem::path&, std::size_t variant)> write;
    };

    Corpus(std::size_t files, const Kind& kind);
    ~Corpus();
    Corpus(const Corpus&) = delete;
    Corpus& operator=(const Corpus&) = delete;

    /// Top folder of the files; their paths.
    std::filesystem::path Folder() const { return folder_ / "files"; }
    const std::vector<std::wstring>& Paths() const { return paths_; }

  private:
    std::filesystem::path folder_;
    std::vector<std::wstring> paths_;
};

}  // namespace orvex::bench
