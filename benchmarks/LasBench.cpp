// Listing ten thousand LAS files, through the inspection and through the dialog.
#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "benchmarks/Bench.h"
#include "benchmarks/DialogBench.h"
#include "benchmarks/ListFiles.h"
#include "benchmarks/Probe.h"
#include "host/objects/HostClasses.h"
#include "las/LasRow.h"
#include "settings/RegistryKey.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr std::size_t kFilesPerFolder = 1000;

constexpr int kRounds = 7;

/// Listing files through the inspection, compared with a bare loop over the same files in the same run.
void MeasureListing(const Corpus& corpus, Figures& figures) {
    std::vector<std::string> names;
    for (const std::wstring& path : corpus.Paths()) {
        names.push_back(ToUtf8(path));
    }
    // The first file brings GDAL and PROJ up; that is a figure of its own.
    figures.Add("las_first_file", Milliseconds([&] { InspectLasFile(corpus.Paths().front()); }), "ms");
    double bare = std::numeric_limits<double>::infinity();
    double inspected = bare;
    std::uint64_t bytes = 0;
    std::size_t loadable = 0;
    for (int round = 0; round < kRounds; ++round) {
        bare = std::min(bare, Milliseconds([&] {
                            for (const std::string& name : names) {
                                bytes += ReadBarely(name);
                            }
                        }));
        std::vector<LasRow> rows;
        rows.reserve(names.size());
        inspected = std::min(inspected, Milliseconds([&] {
                                 for (const std::wstring& path : corpus.Paths()) {
                                     rows.push_back(InspectLasFile(path));
                                 }
                             }));
        loadable = static_cast<std::size_t>(
            std::count_if(rows.begin(), rows.end(), [](const LasRow& row) { return row.loadable; }));
    }
    figures.Add("las_list_files", static_cast<double>(loadable), "files");
    figures.Add("las_list_bare", bare, "ms");
    figures.Add("las_list_inspected", inspected, "ms");
    figures.Add("las_list_ratio", inspected / bare, "ratio");
    figures.Add("las_list_bytes_per_file",
                static_cast<double>(bytes) / kRounds / static_cast<double>(names.size()), "bytes");
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, 10000);
    if (!options) {
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
    const auto kind = orvex::bench::LasFiles(orvex::bench::kFilesPerFolder);
    const orvex::bench::Corpus corpus(options->files, kind);
    orvex::bench::MeasureAdding(corpus, figures);
    orvex::bench::MeasureEscape(corpus, figures);
    // Files that no run before has met, so that each of them is counted whole.
    orvex::bench::MeasureMemory({options->files, kind}, figures);
    orvex::bench::MeasureListing(corpus, figures);
    return figures.Write(options->output) ? 0 : 1;
}
