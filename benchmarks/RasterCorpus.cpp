#include "benchmarks/RasterCorpus.h"

#include <fmt/format.h>
#include <gdal.h>
#include <ogr_spatialref.h>

#include <array>
#include <chrono>
#include <stdexcept>

#include "raster/GdalDataset.h"
#include "support/Text.h"

namespace orvex::bench {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kVariants = 20;
constexpr int kEdge = 256;
constexpr int kBands = 3;

/// An orthophoto as one is delivered: tiled, compressed, with overviews, in a UTM zone.
void WriteVariant(const fs::path& path, std::size_t variant) {
    const char* options[] = {"TILED=YES",      "COMPRESS=DEFLATE", "PHOTOMETRIC=RGB",
                             "BLOCKXSIZE=128", "BLOCKYSIZE=128",   nullptr};
    const GdalDataset dataset(GDALCreate(GDALGetDriverByName("GTiff"), path.string().c_str(), kEdge, kEdge,
                                         kBands, GDT_Byte, const_cast<char**>(options)));
    if (!dataset) {
        throw std::runtime_error("cannot write " + path.string());
    }
    std::array<double, 6> transform{
        400000.0 + 100.0 * static_cast<double>(variant), 0.1, 0, 5000000, 0, -0.1};
    GDALSetGeoTransform(dataset.get(), transform.data());
    OGRSpatialReference crs;
    crs.importFromEPSG(32620 + static_cast<int>(variant));
    GDALSetSpatialRef(dataset.get(), OGRSpatialReference::ToHandle(&crs));
    std::array<int, 2> levels{2, 4};
    if (GDALBuildOverviews(dataset.get(), "NEAREST", 2, levels.data(), 0, nullptr, nullptr, nullptr) !=
        CE_None) {
        throw std::runtime_error("cannot write the overviews of " + path.string());
    }
}

}  // namespace

RasterCorpus::RasterCorpus(std::size_t files)
    : folder_(fs::temp_directory_path() /
              fmt::format("orvex-bench-{}", std::chrono::steady_clock::now().time_since_epoch().count())) {
    fs::create_directories(folder_ / "variants");
    fs::create_directories(folder_ / "files");
    std::vector<fs::path> variants;
    for (std::size_t i = 0; i < kVariants; ++i) {
        variants.push_back(folder_ / "variants" / fmt::format("variant_{}.tif", i));
        WriteVariant(variants.back(), i);
    }
    for (std::size_t i = 0; i < files; ++i) {
        const fs::path path = folder_ / "files" / fmt::format("tile_{:05}.tif", i);
        fs::create_hard_link(variants[i % kVariants], path);
        paths_.push_back(FromPath(path));
    }
}

RasterCorpus::~RasterCorpus() {
    std::error_code error;
    fs::remove_all(folder_, error);
}

}  // namespace orvex::bench
