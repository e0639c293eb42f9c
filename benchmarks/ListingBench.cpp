#include "benchmarks/ListingBench.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <vector>

#include "benchmarks/Corpus.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Probe.h"
#include "las/LasInspection.h"
#include "support/Text.h"

namespace orvex::bench {

namespace {

constexpr int kRounds = 7;

template <class Run>
double Milliseconds(const Run& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

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
        std::vector<LasInspection> rows;
        rows.reserve(names.size());
        inspected = std::min(inspected, Milliseconds([&] {
                                 for (const std::wstring& path : corpus.Paths()) {
                                     rows.push_back(InspectLasFile(path));
                                 }
                             }));
        loadable = static_cast<std::size_t>(
            std::count_if(rows.begin(), rows.end(), [](const LasInspection& row) { return row.loadable; }));
    }
    figures.Add("las_list_files", static_cast<double>(loadable), "files");
    figures.Add("las_list_bare", bare, "ms");
    figures.Add("las_list_inspected", inspected, "ms");
    figures.Add("las_list_ratio", inspected / bare, "ratio");
    figures.Add("las_list_bytes_per_file",
                static_cast<double>(bytes) / kRounds / static_cast<double>(names.size()), "bytes");
}

}  // namespace orvex::bench
