#include "host/app/SamplePhotos.h"

#include <cpl_vsi.h>
#include <fmt/format.h>
#include <gdal_utils.h>
#include <ogr_spatialref.h>

#include <array>
#include <cmath>
#include <exiv2/exiv2.hpp>
#include <fstream>
#include <string>
#include <vector>

#include "host/dem/HostGdal.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 400;   ///< pixels
constexpr int kHeight = 300;  ///< pixels
constexpr double kHeightAbove = 520;

/// One photo of the sample.
struct Sample {
    const char* name;
    double column;  ///< of the orthophoto, the place below the camera
    double row;
    double heading;  ///< degrees, clockwise from north
    int second;      ///< of the flight
    bool hasPosition = true;
    bool hasPose = true;
};
constexpr Sample kSamples[] = {
    {"strip 1 photo 1.jpg", 220, 560, 90, 0},
    {"strip 1 photo 2.jpg", 470, 560, 90, 12},
    {"strip 1 photo 3.jpg", 720, 560, 91, 24},
    {"strip 1 photo 4.jpg", 970, 560, 90, 36},
    {"strip 2 photo 5.jpg", 970, 240, 270, 70},
    {"strip 2 photo 6.jpg", 720, 240, 268, 82},
    {"strip 2 photo 7.jpg", 470, 240, 270, 94},
    {"strip 2 photo 8.jpg", 220, 240, 271, 106},
    {"position only.jpg", 600, 400, 0, 150, true, false},
    {"no position.jpg", 300, 400, 0, 200, false, false},
};

[[noreturn]] void Fail(const GdalErrorScope& errors, const fs::path& path) {
    throw LDataError(FromPath(path) + L": " + FromUtf8(errors.Text()));
}

/// Part of the orthophoto around a place, as a JPEG file of a size.
std::string Jpeg(GDALDataset& orthophoto, const Sample& sample, int width, int height) {
    constexpr const char* kName = "/vsimem/sample-photo.jpg";
    const GdalErrorScope errors;
    const std::string options =
        fmt::format("-q -of JPEG -b 1 -b 2 -b 3 -srcwin {} {} {} {} -outsize {} {} -co QUALITY=80",
                    sample.column - kWidth / 2.0, sample.row - kHeight / 2.0, kWidth, kHeight, width, height);
    const CPLStringList arguments(CSLTokenizeString(options.c_str()));
    const std::unique_ptr<GDALTranslateOptions, decltype(&GDALTranslateOptionsFree)> parsed(
        GDALTranslateOptionsNew(const_cast<char**>(arguments.List()), nullptr), &GDALTranslateOptionsFree);
    GDALClose(GDALTranslate(kName, GDALDataset::ToHandle(&orthophoto), parsed.get(), nullptr));
    vsi_l_offset size = 0;
    const GByte* const bytes = VSIGetMemFileBuffer(kName, &size, FALSE);
    if (bytes == nullptr) {
        Fail(errors, sample.name);
    }
    std::string jpeg(reinterpret_cast<const char*>(bytes), size);
    VSIUnlink(kName);
    VSIUnlink("/vsimem/sample-photo.jpg.aux.xml");
    return jpeg;
}

/// Longitude and latitude on WGS 84.
std::array<double, 2> PlaceOf(GDALDataset& orthophoto, const Sample& sample) {
    std::array<double, 6> t{};
    orthophoto.GetGeoTransform(t.data());
    double x = t[0] + sample.column * t[1];
    double y = t[3] + sample.row * t[5];
    OGRSpatialReference wgs84;
    wgs84.SetWellKnownGeogCS("WGS84");
    wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> toDegrees(
        OGRCreateCoordinateTransformation(orthophoto.GetSpatialRef(), &wgs84));
    if (toDegrees == nullptr || toDegrees->Transform(1, &x, &y) == 0) {
        throw LDataError(L"WGS 84");
    }
    return {x, y};
}

/// Degrees, minutes and seconds as EXIF keeps them.
std::string Sexagesimal(double degrees) {
    const double whole = std::floor(std::abs(degrees));
    const double minutes = std::floor((std::abs(degrees) - whole) * 60);
    const double seconds = ((std::abs(degrees) - whole) * 60 - minutes) * 60;
    return fmt::format("{:.0f}/1 {:.0f}/1 {:.0f}/100000", whole, minutes, seconds * 100000);
}

std::string Segment(const std::string& content) {
    const std::size_t size = content.size() + 2;
    return std::string("\xFF\xE1") + static_cast<char>(size >> 8U) + static_cast<char>(size & 0xFFU) +
           content;
}

std::string ExifOf(const Sample& sample, const std::array<double, 2>& place, const std::string& preview) {
    Exiv2::ExifData exif;
    exif["Exif.Image.Make"] = "Sample";
    exif["Exif.Image.Model"] = "Camera 1";
    exif["Exif.Photo.DateTimeOriginal"] =
        fmt::format("2024:05:01 10:{:02}:{:02}", 20 + sample.second / 60, sample.second % 60);
    exif["Exif.Photo.FocalLength"] = "88/10";
    if (sample.hasPosition) {
        exif["Exif.GPSInfo.GPSVersionID"] = "2 3 0 0";
        exif["Exif.GPSInfo.GPSLongitudeRef"] = place[0] < 0 ? "W" : "E";
        exif["Exif.GPSInfo.GPSLongitude"] = Sexagesimal(place[0]);
        exif["Exif.GPSInfo.GPSLatitudeRef"] = place[1] < 0 ? "S" : "N";
        exif["Exif.GPSInfo.GPSLatitude"] = Sexagesimal(place[1]);
        exif["Exif.GPSInfo.GPSAltitudeRef"] = "0";
        exif["Exif.GPSInfo.GPSAltitude"] = fmt::format("{:.0f}/100", kHeightAbove * 100);
        exif["Exif.GPSInfo.GPSDateStamp"] = "2024:05:01";
        exif["Exif.GPSInfo.GPSTimeStamp"] =
            fmt::format("8/1 {}/1 {}/1", 20 + sample.second / 60, sample.second % 60);
        exif["Exif.GPSInfo.GPSMapDatum"] = "WGS-84";
    }
    Exiv2::ExifThumb(exif).setJpegThumbnail(reinterpret_cast<const Exiv2::byte*>(preview.data()),
                                            static_cast<long>(preview.size()));
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, exif);
    return Segment(std::string("Exif\0\0", 6) + std::string(blob.begin(), blob.end()));
}

std::string XmpOf(const Sample& sample) {
    return Segment(
        std::string("http://ns.adobe.com/xap/1.0/\0", 29) +
        fmt::format(
            "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
            "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
            "xmlns:photo=\"http://orvex.com/photo/1.0/\" photo:ImageUniqueID=\"sample-{}\" "
            "photo:PlatformID=\"Camera 1\" photo:POSQuality=\"FIXED\" photo:ORIQuality=\"GOOD\" "
            "photo:CameraYaw=\"{}\" photo:CameraPitch=\"0.5\" photo:CameraRoll=\"-0.3\" "
            "photo:CameraGPSXYAccuracy=\"0.02\" photo:CameraGPSZAccuracy=\"0.04\" "
            "photo:CameraCalibrated=\"TRUE\" photo:CalibratedFocalLength=\"8.8\"/></rdf:RDF></x:xmpmeta>",
            sample.second, sample.heading));
}

}  // namespace

void WriteSamplePhotos(const fs::path& folder, const fs::path& orthophoto) {
    SetUpGdal();
    const GdalErrorScope errors;
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(ToUtf8(FromPath(orthophoto)).c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
    if (dataset == nullptr) {
        Fail(errors, orthophoto);
    }
    for (const Sample& sample : kSamples) {
        const std::string jpeg = Jpeg(*dataset, sample, kWidth, kHeight);
        const std::string preview = Jpeg(*dataset, sample, kWidth / 2, kHeight / 2);
        std::ofstream file(folder / sample.name, std::ios::binary);
        file << jpeg.substr(0, 2) << ExifOf(sample, PlaceOf(*dataset, sample), preview)
             << (sample.hasPose ? XmpOf(sample) : std::string()) << jpeg.substr(2);
        if (!file.flush()) {
            throw fs::filesystem_error("write", folder / sample.name,
                                       std::make_error_code(std::errc::io_error));
        }
    }
}

}  // namespace orvex
