// Describing a thousand GeoTIFFs of one folder, compared with a loop that only opens and closes them and with
// the program gdalinfo, which describes one file per call.
#include <fmt/format.h>
#include <gdal.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include "benchmarks/Bench.h"
#include "benchmarks/ListFiles.h"
#include "crs/GdalSetup.h"
#include "raster/RasterRow.h"
#include "support/GdalRaii.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr int kRounds = 7;
std::vector<std::string> Names(const Corpus& corpus) {
    std::vector<std::string> names;
    std::ranges::transform(corpus.Paths(), std::back_inserter(names), ToUtf8);
    return names;
}

std::size_t OpenAndClose(const std::vector<std::string>& names) {
    return static_cast<std::size_t>(std::ranges::count_if(names, [](const std::string& name) {
        return GdalDataset(GDALOpen(name.c_str(), GA_ReadOnly)) != nullptr;
    }));
}

/// Opens them and asks where they lie and in which coordinate system, which an opened file has not read yet.
void OpenAndPlace(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const GdalDataset dataset(GDALOpen(name.c_str(), GA_ReadOnly));
        std::array<double, 6> transform{};
        if (GDALGetGeoTransform(dataset.get(), transform.data()) != CE_None ||
            GDALGetSpatialRef(dataset.get()) == nullptr) {
            std::cerr << name << " lies nowhere\n";
        }
    }
}

RasterRow InspectImage(const std::wstring& path) {
    return InspectRasterFile(path, RasterUse::Image);
}

std::size_t InspectAll(const std::vector<std::wstring>& paths) {
    std::vector<RasterRow> rows;
    rows.reserve(paths.size());
    for (const std::wstring& path : paths) {
        rows.push_back(InspectImage(path));
    }
    return static_cast<std::size_t>(std::ranges::count_if(rows, &RasterRow::loadable));
}

/// Runs the program once per file; none when this machine has no such program.
double GdalinfoMilliseconds(const Corpus& corpus, const std::vector<std::string>& names) {
    const std::string output = " >\"" + (corpus.Folder() / "gdalinfo.json").string() + "\" 2>&1";
    if (std::system(("gdalinfo --version" + output).c_str()) != 0) {
        return 0;
    }
    return Milliseconds([&] {
        for (const std::string& name : names) {
            if (std::system(fmt::format("gdalinfo -json \"{}\"{}", name, output).c_str()) != 0) {
                std::cerr << "gdalinfo fails on " << name << '\n';
            }
        }
    });
}

void Measure(const Corpus& corpus, Figures& figures) {
    const std::vector<std::string> names = Names(corpus);
    double opened = std::numeric_limits<double>::infinity();
    double placed = opened;
    double inspected = opened;
    double read = opened;
    std::size_t loadable = 0;
    for (int round = 0; round < kRounds; ++round) {
        opened = std::min(opened, Milliseconds([&] { OpenAndClose(names); }));
        placed = std::min(placed, Milliseconds([&] { OpenAndPlace(names); }));
        inspected = std::min(inspected, Milliseconds([&] { loadable = InspectAll(corpus.Paths()); }));
        read = std::min(read, Milliseconds([&] { ReadAsDialog<RasterRow>(corpus.Paths(), InspectImage); }));
    }
    figures.Add("raster_list_files", static_cast<double>(loadable), "files");
    figures.Add("raster_list_opened", opened, "ms");
    figures.Add("raster_list_placed", placed, "ms");
    figures.Add("raster_list_inspected", inspected, "ms");
    figures.Add("raster_list_ratio", inspected / opened, "ratio");
    figures.Add("raster_list_placed_ratio", inspected / placed, "ratio");
    figures.Add("raster_list_read", read, "ms");
    figures.Add("raster_list_read_placed_ratio", read / placed, "ratio");
    if (const double gdalinfo = GdalinfoMilliseconds(corpus, names); gdalinfo > 0) {
        figures.Add("raster_list_gdalinfo", gdalinfo, "ms");
        figures.Add("raster_list_gdalinfo_ratio", inspected / gdalinfo, "ratio");
    }
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, 1000);
    if (!options) {
        return 2;
    }
    orvex::bench::Figures figures;
    if (!orvex::EnsureGdal()) {
        std::cerr << "GDAL's data is missing beside this program\n";
        return 1;
    }
    const orvex::bench::Corpus corpus(options->files, orvex::bench::Orthophotos(options->files));
    orvex::bench::Measure(corpus, figures);
    return figures.Write(options->output) ? 0 : 1;
}
