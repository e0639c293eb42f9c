// Writes the seeds of a fuzzer into a folder: NAME_fuzz_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "fuzz/Seeds.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const std::string& seed : orvex::fuzz::Seeds()) {
        std::ofstream file(folder / ("seed-" + std::to_string(number++)), std::ios::binary);
        if (!(file << seed)) {
            std::fprintf(stderr, "cannot write into %s\n", argv[1]);
            return 1;
        }
    }
    return 0;
}
