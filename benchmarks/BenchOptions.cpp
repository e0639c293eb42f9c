#include "benchmarks/BenchOptions.h"

#include <cstdlib>
#include <cstring>

namespace orvex::bench {

std::optional<BenchOptions> ParseBenchOptions(int argc, char** argv, std::size_t files) {
    BenchOptions options{{}, files};
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 < argc && std::strcmp(argv[i], "--output") == 0) {
            options.output = argv[i + 1];
        } else if (i + 1 < argc && std::strcmp(argv[i], "--files") == 0) {
            options.files = std::strtoul(argv[i + 1], nullptr, 10);
        } else {
            return std::nullopt;
        }
    }
    return options.files > 0 ? std::optional(options) : std::nullopt;
}

}  // namespace orvex::bench
