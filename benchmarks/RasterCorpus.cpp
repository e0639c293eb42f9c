#include <gdal.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "benchmarks/Corpus.h"
#include "crs/GdalRaii.h"

namespace orvex::bench {

namespace {

namespace fs = std::filesystem;

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

Corpus RasterCorpus(std::size_t files) {
    return {files, {".tif", std::max<std::size_t>(files, 1), WriteVariant}};
}

}  // namespace orvex::bench
