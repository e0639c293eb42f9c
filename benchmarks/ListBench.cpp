// What a file costs in lists of a hundred to a hundred thousand: time on one thread, time as the dialog's
// pages read it, and memory of its row.
#include <algorithm>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include <fmt/format.h>

#include "benchmarks/Bench.h"
#include "benchmarks/ListFiles.h"
#include "benchmarks/Probe.h"
#include "crs/GdalSetup.h"
#include "feature/FeatureRow.h"
#include "las/LasRow.h"
#include "photo/PhotoRow.h"
#include "raster/RasterRow.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr std::size_t kFewest = 100;
constexpr std::size_t kStep = 10;
constexpr std::size_t kFilesPerFolder = 1000;
constexpr std::size_t kFilesPerSize = 10'000;  // read at least, in one round or in several

struct Cost {
    double alone = std::numeric_limits<double>::infinity();  ///< microseconds per file, on one thread
    double read = alone;                                     ///< the same as the dialog reads them
    double bare = 0;                                         ///< for the bare system calls; 0 if not measured
    double heap = 0;                                         ///< bytes per row
};

template <typename Row, typename Inspect>
std::vector<Row> InspectAll(const std::vector<std::wstring>& paths, const Inspect& inspect) {
    std::vector<Row> rows;
    rows.reserve(paths.size());
    std::ranges::transform(paths, std::back_inserter(rows), inspect);
    return rows;
}

template <typename Row, typename Inspect>
Cost Measure(const std::vector<std::wstring>& paths, const Inspect& inspect) {
    constexpr bool kHasBare = std::is_same_v<Row, LasRow>;
    std::vector<std::string> names;
    std::ranges::transform(paths, std::back_inserter(names), ToUtf8);
    const auto perFile = [&](double milliseconds) {
        return milliseconds * 1000 / static_cast<double>(paths.size());
    };
    Cost cost;
    // What libraries and caches keep for themselves is theirs, not a row's.
    InspectAll<Row>({paths.begin(), paths.begin() + kFewest}, inspect);
    {
        const std::uint64_t before = HeapInUse();
        const auto rows = InspectAll<Row>(paths, inspect);
        cost.heap = static_cast<double>(HeapInUse() - before) / static_cast<double>(paths.size());
    }
    cost.bare = kHasBare ? cost.alone : 0;
    const std::size_t rounds = std::max<std::size_t>(2, kFilesPerSize / paths.size());
    for (std::size_t round = 0; round < rounds; ++round) {
        if (kHasBare) {
            cost.bare =
                std::min(cost.bare, perFile(Milliseconds([&] { std::ranges::for_each(names, ReadBarely); })));
        }
        cost.alone = std::min(cost.alone, perFile(Milliseconds([&] { InspectAll<Row>(paths, inspect); })));
        cost.read = std::min(cost.read, perFile(Milliseconds([&] { ReadAsDialog<Row>(paths, inspect); })));
    }
    return cost;
}

template <typename Row, typename Inspect>
void MeasureSizes(const std::string& name, const Corpus::Kind& kind, std::size_t most, const Inspect& inspect,
                  Figures& figures) {
    Cost first;
    Cost last;
    for (std::size_t files = kFewest; files <= most; files *= kStep) {
        const Corpus corpus(files, kind);
        last = Measure<Row>(corpus.Paths(), inspect);
        first = files == kFewest ? last : first;
        figures.Add(fmt::format("list_{}_{}_alone", name, files), last.alone, "us/file");
        figures.Add(fmt::format("list_{}_{}_read", name, files), last.read, "us/file");
        if (last.bare > 0) {
            figures.Add(fmt::format("list_{}_{}_bare", name, files), last.bare, "us/file");
            figures.Add(fmt::format("list_{}_{}_ratio", name, files), last.alone / last.bare, "ratio");
        }
    }
    figures.Add(fmt::format("list_{}_growth_alone", name), last.alone / first.alone, "ratio");
    figures.Add(fmt::format("list_{}_heap", name), last.heap, "bytes/row");
}

RasterRow InspectImage(const std::wstring& path) {
    return InspectRasterFile(path, RasterUse::Image);
}

RasterRow InspectDem(const std::wstring& path) {
    return InspectRasterFile(path, RasterUse::Dem);
}

FeatureRow InspectFeature(const std::wstring& path) {
    return InspectFeatureFile(path);
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    using namespace orvex;
    using namespace orvex::bench;
    const auto options = ParseBenchOptions(argc, argv, 100'000);
    if (!options || options->files < kFewest) {
        return 2;
    }
    if (!EnsureGdal()) {
        std::cerr << "GDAL's data is missing beside this program\n";
        return 1;
    }
    Figures figures;
    const std::size_t most = options->files;
    MeasureSizes<LasRow>("las", LasFiles(kFilesPerFolder), most, InspectLasFile, figures);
    MeasureSizes<RasterRow>("raster", Orthophotos(kFilesPerFolder), most, InspectImage, figures);
    MeasureSizes<RasterRow>("dem", Orthophotos(kFilesPerFolder), most, InspectDem, figures);
    MeasureSizes<PhotoRow>("photo", DronePhotos(kFilesPerFolder), most, InspectPhoto, figures);
    MeasureSizes<FeatureRow>("feature", KmlFiles(kFilesPerFolder), most, InspectFeature, figures);
    return figures.Write(options->output) ? 0 : 1;
}
