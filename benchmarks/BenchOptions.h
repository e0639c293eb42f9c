#pragma once
#include <cstddef>
#include <optional>
#include <string>

namespace orvex::bench {

/// What the benchmarks' command lines say.
struct BenchOptions {
    std::string output;  ///< where the figures are written as JSON; empty for nowhere
    std::size_t files;   ///< at least 1
};

/// "[--files N] [--output FILE]"; none when a command line says anything else.
std::optional<BenchOptions> ParseBenchOptions(int argc, char** argv, std::size_t files);

}  // namespace orvex::bench
