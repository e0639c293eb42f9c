#include <fmt/format.h>

#include <fstream>

#include "benchmarks/Corpus.h"

#include "las/testing/LasBuilder.h"

namespace orvex::bench {

namespace {

constexpr std::size_t kFilesPerFolder = 1000;

/// A UTM zone, in the words that a WKT record has.
std::string Wkt(std::size_t zone) {
    return fmt::format(
        "PROJCS[\"WGS 84 / UTM zone {0}N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\","
        "SPHEROID[\"WGS "
        "84\",6378137,298.257223563,AUTHORITY[\"EPSG\",\"7030\"]],AUTHORITY[\"EPSG\",\"6326\"]],"
        "PRIMEM[\"Greenwich\",0,AUTHORITY[\"EPSG\",\"8901\"]],UNIT[\"degree\",0.0174532925199433,"
        "AUTHORITY[\"EPSG\",\"9122\"]],AUTHORITY[\"EPSG\",\"4326\"]],PROJECTION[\"Transverse_Mercator\"],"
        "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",{1}],PARAMETER[\"scale_factor\","
        "0.9996],"
        "PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1,"
        "AUTHORITY[\"EPSG\",\"9001\"]],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH],"
        "AUTHORITY[\"EPSG\",\"{2}\"]]",
        zone, static_cast<int>(zone) * 6 - 183, 32600 + zone);
}

std::string VariantBytes(std::size_t variant) {
    return testing::LasBuilder(14, 6)
        .AddPoints(100, 400000.0 + 100.0 * static_cast<double>(variant), 5000000)
        .Wkt(Wkt(variant + 20))
        .AddVlr("Vendor", 100, std::string(64, 'v'), "what another program writes")
        .AddExtraBytes("Amplitude", 3, 2)
        .Build();
}

}  // namespace

Corpus LasCorpus(std::size_t files) {
    const auto write = [](const std::filesystem::path& path, std::size_t variant) {
        const std::string bytes = VariantBytes(variant);
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    };
    return {files, {".las", kFilesPerFolder, write}};
}

}  // namespace orvex::bench
