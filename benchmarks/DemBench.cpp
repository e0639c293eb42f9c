// Converting an elevation raster of thirty million pixels to LAS, compared with copying the resulting file.
// Both are repeated and the best time counts, because other load on the disk only adds.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/Bench.h"
#include "benchmarks/Probe.h"
#include "crs/GdalSetup.h"
#include "host/dem/DemConversion.h"
#include "host/dem/testing/DemSamples.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace {

using namespace orvex;

constexpr int kWidth = 6000;
constexpr int kHeight = 5000;
constexpr int kRepeats = 5;

using CreationOptions = std::vector<std::pair<std::string, std::string>>;

testing::DemSample Terrain(const CreationOptions& options) {
    testing::DemSample sample;
    sample.width = kWidth;
    sample.height = kHeight;
    sample.transform = {{500000, 0.5, 0, 5600000, 0, -0.5}};
    sample.crs = "EPSG:25832";
    sample.noData = -9999;
    sample.creationOptions = options;
    sample.value = [](int column, int row) {
        const bool isHole = column / 500 == 3 && row / 500 == 4;
        return isHole ? -9999 : 300 + 40 * std::sin(column / 700.0) + 25 * std::cos(row / 450.0);
    };
    return sample;
}

/// False when a file could not be made.
bool Measure(const std::string& name, const CreationOptions& options, bench::Figures& figures) {
    const testing::TemporaryFolder folder;
    const std::wstring raster = folder.Name(L"terrain.tif");
    if (!testing::WriteDem(raster, Terrain(options))) {
        return false;
    }
    DemConversionOptions conversion;
    conversion.outputFolder = folder.Name(L"las");
    double best = std::numeric_limits<double>::max();
    double bestCopy = best;
    double points = 0;
    for (int i = 0; i < kRepeats; ++i) {
        DemConversionResult result;
        best = std::min(best, 1e-3 * bench::Milliseconds([&] {
                                  Kst::NullProgress progress;
                                  result = ConvertDem(raster, conversion, progress).value_or(result);
                              }));
        points = static_cast<double>(result.points);
        const std::wstring copy = folder.Name(L"copy.las");
        bool isCopied = false;
        bestCopy = std::min(bestCopy, 1e-3 * bench::Milliseconds([&] {
                                          isCopied = bench::CopyWithSystem(result.lasPath, copy);
                                      }));
        RemoveFile(result.lasPath);
        RemoveFile(copy);
        if (!isCopied) {
            return false;
        }
    }
    figures.Add("dem_" + name + "_points", points * 1e-6, "million");
    figures.Add("dem_" + name + "_speed", points * 1e-6 / best, "million points/s");
    figures.Add("dem_" + name + "_copy", bestCopy, "s");
    figures.Add("dem_" + name + "_to_copy", best / bestCopy, "ratio");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = bench::ParseBenchOptions(argc, argv);
    if (!options) {
        return 2;
    }
    if (!EnsureGdal()) {
        std::cerr << "GDAL's data is missing beside this program\n";
        return 1;
    }
    bench::Figures figures;
    if (!Measure("plain", {{"TILED", "YES"}}, figures) ||
        !Measure("deflate", {{"TILED", "YES"}, {"COMPRESS", "DEFLATE"}, {"PREDICTOR", "3"}}, figures)) {
        std::cerr << "a file could not be written\n";
        return 1;
    }
    return figures.Write(options->output) ? 0 : 1;
}
