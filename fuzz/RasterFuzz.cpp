// Lists arbitrary bytes as an image and as an elevation model, and makes a LAS file of the latter.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "crs/GdalSetup.h"
#include "host/dem/DemConversion.h"
#include "las/LasRow.h"
#include "raster/RasterColumns.h"
#include "raster/page/RasterDetails.h"
#include "support/LDataError.h"
#include "support/testing/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;
using namespace orvex;

constexpr double kMostConverted = 65536;  // pixels

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void List(const std::wstring& path, RasterUse use) {
    const RasterRow row = InspectRasterFile(path, use);
    Require(!row.threw, "every failure is an expected one");
    Require(!row.summary.empty(), "a row says how the file is");
    Require(row.loadable == row.IsDescribed(), "a file is loadable if it is described");
    Require(row.loadable || !row.findings.empty(), "what cannot be loaded has a reason");
    Require(!row.loadable || (row.Properties().width >= 1 && row.Properties().height >= 1), "it has pixels");
    for (const Column<RasterRow>& column : RasterColumns(use)) {
        CellText(column, row);
    }
    RasterDetailsContent({&row, 1}, std::array{std::size_t{0}}, use, QStringLiteral("#000000"));
}

void Convert(const std::wstring& path, const fs::path& folder, std::size_t size) {
    const RasterRow row = InspectRasterFile(path, RasterUse::Dem);
    if (row.IsDescribed() &&
        static_cast<double>(row.Properties().width) * row.Properties().height > kMostConverted) {
        return;
    }
    DemConversionOptions options;
    options.pointFormat = size % 2 == 0 ? 6 : 1;
    options.outputFolder = FromPath(folder / "las");
    Kst::NullProgress progress;
    try {
        const auto result = ConvertDem(path, options, progress);
        Require(result.has_value(), "nobody stopped it");
        const LasRow las = InspectLasFile(result->lasPath);
        Require(las.loadable, "the LAS file opens");
        Require(las.file->Header().PointCount() == result->points, "its points are those that were made");
    } catch (const LDataError&) {
        // A raster without heights, for instance.
    }
}

std::size_t FilesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvex::testing::TemporaryFolder folder;
    Require(EnsureGdal(), "GDAL's data lies beside this program");
    fs::remove(folder.Path() / "input.tif");
    const std::wstring path =
        folder.Write(L"input.tif", std::string(reinterpret_cast<const char*>(data), size));
    List(path, RasterUse::Image);
    List(path, RasterUse::Dem);
    Require(FilesIn(folder.Path()) == 1, "listing writes nothing");
    Convert(path, folder.Path(), size);
    fs::remove_all(folder.Path() / "las");
    Require(FilesIn(folder.Path()) == 1, "converting writes nothing else");
    return 0;
}
