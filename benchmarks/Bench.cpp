#include "benchmarks/Bench.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>

#include "support/Text.h"

namespace orvex::bench {

namespace fs = std::filesystem;

namespace {

/// Numbers between commas; 0 for what is none.
std::vector<std::uint64_t> Numbers(const std::string& list) {
    std::vector<std::uint64_t> numbers;
    std::istringstream stream(list);
    for (std::string number; std::getline(stream, number, ',');) {
        numbers.push_back(std::strtoull(number.c_str(), nullptr, 10));
    }
    return numbers;
}

}  // namespace

std::optional<BenchOptions> ParseBenchOptions(int argc, char** argv, BenchOptions defaults) {
    const bool hasFiles = defaults.files > 0;
    const bool hasPoints = !defaults.points.empty();
    BenchOptions options = std::move(defaults);
    bool isValid = argc % 2 == 1;
    for (int i = 1; i < argc && isValid; i += 2) {
        const std::string_view name = argv[i];
        if (name == "--output") {
            options.output = argv[i + 1];
        } else if (name == "--files" && hasFiles) {
            options.files = std::strtoul(argv[i + 1], nullptr, 10);
        } else if (name == "--points" && hasPoints) {
            options.points = Numbers(argv[i + 1]);
        } else if (name == "--tile" && hasPoints) {
            options.tile = argv[i + 1];
        } else {
            isValid = false;
        }
    }
    const bool isEmpty =
        (hasFiles && options.files == 0) ||
        (hasPoints && (options.points.empty() || std::ranges::count(options.points, 0U) > 0));
    if (!isValid || isEmpty) {
        std::cerr << "usage: " << argv[0] << (hasFiles ? " [--files N]" : "")
                  << (hasPoints ? " [--points N[,N...]] [--tile FILE]" : "") << " [--output FILE]\n";
        return std::nullopt;
    }
    return options;
}

void Figures::Add(const std::string& name, double value, const std::string& unit) {
    std::cout << fmt::format("figure\t{}\t{:.6g}\t{}", name, value, unit) << std::endl;
    figures_.push_back({name, value, unit});
}

bool Figures::Write(const std::string& path) const {
    if (path.empty()) {
        return true;
    }
    const std::string part = path + ".part";
    {
        std::ofstream file(part, std::ios::binary);
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Figure& figure : figures_) {
            list.push_back({{"name", figure.name}, {"value", figure.value}, {"unit", figure.unit}});
        }
        file << list.dump(2) << '\n';
        if (!file.flush()) {
            return false;
        }
    }
    std::error_code error;
    fs::rename(part, path, error);
    return !error;
}

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
