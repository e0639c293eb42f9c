// Reading the metadata of the photos of a folder, compared with the program exiftool in one call, and the
// cost of a photo among many.
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include "benchmarks/Bench.h"
#include "benchmarks/ListFiles.h"
#include "benchmarks/Probe.h"
#include "photo/PhotoRow.h"
#include "photo/PhotoSeries.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr int kRounds = 5;
constexpr std::size_t kFew = 100;
constexpr std::size_t kCompared = 1000;  // the other program takes seconds for these

std::vector<PhotoRow> Inspect(const std::vector<std::wstring>& paths) {
    std::vector<PhotoRow> rows;
    rows.reserve(paths.size());
    std::ranges::transform(paths, std::back_inserter(rows), InspectPhoto);
    ComparePhotos(rows);
    return rows;
}

/// Milliseconds of the fastest of several rounds.
double Fastest(const std::vector<std::wstring>& paths) {
    double best = std::numeric_limits<double>::infinity();
    for (int round = 0; round < kRounds; ++round) {
        best = std::min(best, Milliseconds([&] { Inspect(paths); }));
    }
    return best;
}

/// One call for the whole folder; 0 when this machine has no such program.
double ExiftoolMilliseconds(const std::filesystem::path& folder, const std::filesystem::path& output) {
    const std::string redirection = " >\"" + output.string() + "\" 2>&1";
    if (std::system(("exiftool -ver" + redirection).c_str()) != 0) {
        return 0;
    }
    return Milliseconds([&] {
        const std::string command = fmt::format("exiftool -fast2 -json -n -r \"{}\"", folder.string());
        if (std::system((command + redirection).c_str()) != 0) {
            std::cerr << "exiftool fails\n";
        }
    });
}

void Compare(const std::filesystem::path& folder, const std::vector<std::wstring>& paths,
             const std::string& name, Figures& figures) {
    const double ours = Fastest(paths);
    figures.Add("photo_" + name + "_inspected", ours, "ms");
    const std::filesystem::path output = std::filesystem::temp_directory_path() / "orvex-bench-exiftool.json";
    if (const double theirs = ExiftoolMilliseconds(folder, output); theirs > 0) {
        figures.Add("photo_" + name + "_exiftool", theirs, "ms");
        figures.Add("photo_" + name + "_exiftool_ratio", ours / theirs, "ratio");
    }
    std::filesystem::remove(output);
}

/// Inspects the photos as if they were many small lists.
void InspectApart(const std::vector<std::wstring>& paths) {
    for (std::size_t first = 0; first < paths.size(); first += kFew) {
        const std::size_t end = std::min(first + kFew, paths.size());
        Inspect({paths.begin() + static_cast<std::ptrdiff_t>(first),
                 paths.begin() + static_cast<std::ptrdiff_t>(end)});
    }
}

/// The same photos in one list and in lists of a hundred.
void MeasureGrowth(std::size_t files, Figures& figures) {
    const Corpus corpus(files, DronePhotos(files));
    const std::vector<std::wstring>& paths = corpus.Paths();
    double apart = std::numeric_limits<double>::infinity();
    double together = apart;
    for (int round = 0; round < kRounds; ++round) {
        apart = std::min(apart, Milliseconds([&] { InspectApart(paths); }));
        together = std::min(together, Milliseconds([&] { Inspect(paths); }));
    }
    const std::uint64_t before = HeapInUse();
    const std::vector<PhotoRow> rows = Inspect(paths);
    const std::uint64_t after = HeapInUse();
    figures.Add("photo_files", static_cast<double>(std::ranges::count_if(rows, &PhotoRow::loadable)),
                "files");
    figures.Add("photo_inspected", together * 1e3 / static_cast<double>(files), "us/file");
    figures.Add("photo_growth", together / apart, "ratio");
    figures.Add("photo_heap", static_cast<double>(after - before) / static_cast<double>(files), "bytes/file");
}

/// The files of a folder, which the user names.
std::vector<std::wstring> FilesIn(const std::filesystem::path& folder) {
    std::vector<std::wstring> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(FromPath(entry.path()));
    }
    return paths;
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    using namespace orvex::bench;
    const auto options = ParseBenchOptions(argc, argv, 10000);
    if (!options) {
        return 2;
    }
    Figures figures;
    {
        const Corpus corpus(kCompared, DronePhotos(kCompared));
        Compare(corpus.Folder(), corpus.Paths(), "list", figures);
    }
    // Real photos differ more than made ones.
    if (const char* folder = std::getenv("ORVEX_BENCH_PHOTOS")) {
        Compare(folder, FilesIn(folder), "folder", figures);
    }
    MeasureGrowth(options->files, figures);
    return figures.Write(options->output) ? 0 : 1;
}
