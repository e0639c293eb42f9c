// Listing ten thousand LAS files, through the inspection and through the dialog.
#include <QApplication>
#include <QTemporaryDir>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "benchmarks/Corpus.h"
#include "benchmarks/DialogBench.h"
#include "benchmarks/Figures.h"
#include "benchmarks/ListingBench.h"
#include "host/objects/HostClasses.h"
#include "settings/PrivateSettings.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace {

struct Options {
    std::string output;
    std::size_t files = 10000;
    bool valid = true;
};

Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc && options.valid; ++i) {
        if (std::strcmp(argv[i], "--output") == 0 && i + 1 < argc) {
            options.output = argv[++i];
        } else if (std::strcmp(argv[i], "--files") == 0 && i + 1 < argc) {
            options.files = std::strtoul(argv[++i], nullptr, 10);
        } else {
            options.valid = false;
        }
    }
    options.valid = options.valid && options.files > 0;
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = Parse(argc, argv);
    if (!options.valid) {
        std::cerr << "usage: orvex-bench-las [--files N] [--output FILE]\n";
        return 2;
    }
    // Options that the user has chosen neither change the figures nor are changed.
    const QTemporaryDir folder;
    const orvex::PrivateSettings settings(orvex::ToPath(orvex::ToWide(folder.path())));
    QApplication application(argc, argv);
    const orvex::host::HostClasses classes(
        {orvex::host::DefaultSettingsFile(), [] { return std::wstring(); }});

    orvex::bench::Figures figures;
    orvex::bench::MeasureOpening(figures);
    const orvex::bench::Corpus corpus = orvex::bench::LasCorpus(options.files);
    orvex::bench::MeasureAdding(corpus, figures);
    orvex::bench::MeasureEscape(corpus, figures);
    // Files that no run before has met, so that each of them is counted whole.
    orvex::bench::MeasureMemory(orvex::bench::LasCorpus(options.files), figures);
    orvex::bench::MeasureListing(corpus, figures);
    return options.output.empty() || figures.Write(options.output) ? 0 : 1;
}
