#include "benchmarks/ListFiles.h"

#include <fmt/format.h>
#include <gdal.h>
#include <ogr_spatialref.h>

#include <array>
#include <fstream>
#include <stdexcept>

#include "host/utilities/testing/PhotoSamples.h"
#include "las/testing/LasBuilder.h"
#include "support/GdalRaii.h"

namespace orvex::bench {
namespace {

/// WKT record of a UTM zone.
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

void WriteLas(const std::filesystem::path& path, std::size_t variant) {
    const std::string bytes = testing::LasBuilder(14, 6)
                                  .AddPoints(100, 400000.0 + 100.0 * static_cast<double>(variant), 5000000)
                                  .Wkt(Wkt(variant + 20))
                                  .AddVlr("Vendor", 100, std::string(64, 'v'), "what another program writes")
                                  .AddExtraBytes("Amplitude", 3, 2)
                                  .Build();
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

constexpr int kEdge = 256;
constexpr int kBands = 3;
constexpr std::size_t kPixelBytes = std::size_t{64} << 10U;

void WriteOrthophoto(const std::filesystem::path& path, std::size_t variant) {
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

void WritePhoto(const std::filesystem::path& path, std::size_t variant) {
    testing::ExifBytes exif;
    exif.Position(8.5 + static_cast<double>(variant) * 1e-4, 47.25, 520)
        .GpsTime("2019:07:14", 9, 21, {33, 1});
    exif.Text(testing::ExifBytes::kImage, 0x10F, "Maker").Text(testing::ExifBytes::kImage, 0x110, "M1");
    exif.Fractions(testing::ExifBytes::kExif, 0x920A, {{88, 10}});
    exif.Bytes(testing::ExifBytes::kExif, 0x927C, std::string(20000, 'm'));
    const std::string xmp = testing::XmpWith(
        "http://www.dji.com/drone-dji/1.0/",
        {{"AbsoluteAltitude", "+520.5"}, {"GimbalYawDegree", "-90.3"}, {"GimbalPitchDegree", "-89.9"}});
    std::ofstream(path, std::ios::binary)
        << testing::JpegWith(exif.Build(), xmp, 5472, 3648) << std::string(kPixelBytes, 'p');
}

void WriteKml(const std::filesystem::path& path, std::size_t variant) {
    std::ofstream file(path, std::ios::binary);
    file << "<kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document><name>Plan</name>";
    for (std::size_t i = 0; i < 100; ++i) {
        file << fmt::format(
            "<Placemark><name>{0}</name><Point><coordinates>{1}.5,{0}.25</coordinates></Point></Placemark>",
            i % 90, variant);
    }
    file << "</Document></kml>";
}

}  // namespace

Corpus::Kind LasFiles(std::size_t filesPerFolder) {
    return {".las", filesPerFolder, WriteLas};
}

Corpus::Kind Orthophotos(std::size_t filesPerFolder) {
    return {".tif", filesPerFolder, WriteOrthophoto};
}

Corpus::Kind DronePhotos(std::size_t filesPerFolder) {
    return {".jpg", filesPerFolder, WritePhoto};
}

Corpus::Kind KmlFiles(std::size_t filesPerFolder) {
    return {".kml", filesPerFolder, WriteKml};
}

}  // namespace orvex::bench
