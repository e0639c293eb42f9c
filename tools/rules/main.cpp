// Prints the violations of the source tree's rules, one per line as file:line: text. Exit code 1 if there are
// any.
#include <cstdio>
#include <exception>

#include "tools/rules/Rules.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: orvex-rules FOLDER\n", stderr);
        return 2;
    }
    try {
        const orvex::rules::Tree tree = orvex::rules::ReadTree(argv[1]);
        if (tree.sources.empty()) {
            std::fprintf(stderr, "orvex-rules: no sources in %s\n", argv[1]);
            return 2;
        }
        const auto violations = orvex::rules::CheckAll(tree);
        for (const auto& violation : violations) {
            std::printf("%s:%zu: %s\n", violation.file.c_str(), violation.line, violation.what.c_str());
        }
        std::printf("%zu files, %zu violations\n", tree.files.size(), violations.size());
        return violations.empty() ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvex-rules: %s\n", problem.what());
        return 2;
    }
}
