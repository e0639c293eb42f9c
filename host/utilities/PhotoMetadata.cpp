// GetExifTagPTreeForImages and GetExifThumbnail: the keys of a photo's metadata and where each comes from.
#include <fmt/format.h>

#include <atomic>
#include <boost/property_tree/ptree.hpp>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <thread>

#include "host/utilities/ExifValues.h"
#include "host/utilities/PhotoContainer.h"
#include "host/utilities/XmpPacket.h"
#include "orvexcommon/Geocoding.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"
#include "support/Text.h"

using namespace orvex;

namespace {

using Tree = boost::property_tree::wptree;
using Number = std::optional<double>;

constexpr std::uint64_t kMostThumbnail = std::uint64_t{1} << 20U;
constexpr const char* kWgs84 =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS "
    "84\",6378137,298.257223563,AUTHORITY[\"EPSG\",\"7030\"]],"
    "AUTHORITY[\"EPSG\",\"6326\"]],PRIMEM[\"Greenwich\",0,AUTHORITY[\"EPSG\",\"8901\"]],"
    "UNIT[\"degree\",0.0174532925199433,AUTHORITY[\"EPSG\",\"9122\"]],AXIS[\"Latitude\",NORTH],"
    "AXIS[\"Longitude\",EAST],AUTHORITY[\"EPSG\",\"4326\"]]";

/// Everything that a photo says of itself.
struct Photo {
    PhotoContainer container;
    XmpProperties xmp;
    ExifValues exif;

    explicit Photo(PhotoBytes& file)
        : container(ReadPhotoContainer(file)),
          xmp(ReadXmpPacket(container.xmp)),
          exif(container.facts.exif) {}
};

/// Where a value of XMP stands. `part` is its place in a list such as "0.1,0.2", whose parts are split at
/// commas and semicolons; -1 is the whole.
struct XmpPlace {
    XmpVocabulary vocabulary;
    const char* name;
    int part = -1;
};

std::string XmpText(const Photo& photo, const XmpPlace& place) {
    const auto found = photo.xmp.find({place.vocabulary, place.name});
    if (found == photo.xmp.end()) {
        return {};
    }
    std::string_view text = found->second;
    for (int skip = place.part; skip > 0; --skip) {
        const std::size_t end = text.find_first_of(",;");
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    text = place.part < 0 ? text : text.substr(0, text.find_first_of(",;"));
    const std::size_t first = text.find_first_not_of(' ');
    return std::string(first == std::string_view::npos ? std::string_view() : text.substr(first));
}

/// A decimal number, which may have a plus sign; nullopt if anything else follows.
Number Decimal(std::string_view text) {
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isWhole = end == text.data() + text.size();
    return error == std::errc() && isWhole && std::isfinite(value) ? Number(value) : std::nullopt;
}

/// A number or a fraction such as "16319/100".
Number NumberIn(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) {
        return Decimal(text);
    }
    const Number top = Decimal(text.substr(0, slash));
    const Number bottom = Decimal(text.substr(slash + 1));
    return top && bottom && *bottom != 0 ? Number(*top / *bottom) : std::nullopt;
}

Number XmpNumber(const Photo& photo, const XmpPlace& place) {
    return NumberIn(XmpText(photo, place));
}

Number AdjustedSeconds(const std::string& utc) {
    double seconds = 0;
    return TimeConverter::UTCToAdjGPSSecs(utc, seconds) ? Number(seconds) : std::nullopt;
}

/// Time of the exposure, "2021-05-12T08:31:22.123456".
Number DjiTime(const Photo& photo) {
    std::string utc = XmpText(photo, {XmpVocabulary::Dji, "UTCAtExposure"});
    if (utc.size() > 10 && utc[10] == 'T') {
        utc[10] = ' ';
    }
    return AdjustedSeconds(utc);
}

Number ExifTime(const Photo& photo) {
    const Number time = AdjustedSeconds(photo.exif.GpsTime());
    return time ? time : DjiTime(photo);
}

Number ExifYaw(const Photo& photo) {
    return photo.exif.Direction();
}

Number ExifAltitude(const Photo& photo) {
    return photo.exif.Altitude();
}

Number ExifAccuracy(const Photo& photo) {
    return photo.exif.Number("Exif.GPSInfo.GPSHPositioningError");
}

Number ExifFocalLength(const Photo& photo) {
    return photo.exif.Number("Exif.Photo.FocalLength");
}

/// A side of the image, else what its metadata says of it.
Number SideOf(std::uint32_t pixels, Number stated) {
    return pixels != 0                                         ? Number(pixels)
           : stated && *stated >= 1 && *stated <= 4294967295.0 ? stated
                                                               : std::nullopt;
}

Number Height(const Photo& photo) {
    return SideOf(photo.container.facts.height, photo.exif.Number("Exif.Photo.PixelYDimension"));
}

Number Width(const Photo& photo) {
    return SideOf(photo.container.facts.width, photo.exif.Number("Exif.Photo.PixelXDimension"));
}

std::string ExifImageId(const Photo& photo) {
    return photo.exif.Text("Exif.Photo.ImageUniqueID");
}

constexpr auto kCamera = XmpVocabulary::Camera;
constexpr auto kDji = XmpVocabulary::Dji;

/// A key of the tree, and its sources in the order in which they are asked. The first is always this system's
/// own vocabulary, where the property has the key's name.
template <typename Value>
struct Key {
    const char* name;
    std::array<XmpPlace, 3> places = {};  ///< those without a name are none
    Value (*exif)(const Photo& photo) = nullptr;
};

constexpr Key<std::string> kTexts[] = {
    {"ImageUniqueID", {{{kCamera, "ImageUniqueID"}}}, ExifImageId},
    {"PlatformID", {{{kDji, "DroneSerialNumber"}}}},
    {"POSQuality"},
    {"ORIQuality"},
    {"CameraCalibrated"},
    {"CalibratedDate", {{{kDji, "DewarpData", 0}}}},
};

// Longitude and latitude, which belong together, are read apart.
constexpr Key<Number> kNumbers[] = {
    {"GPSAltitude", {{{kDji, "AbsoluteAltitude"}}}, ExifAltitude},
    {"CameraYaw", {{{kCamera, "Yaw"}, {kDji, "GimbalYawDegree"}, {kDji, "FlightYawDegree"}}}, ExifYaw},
    {"CameraPitch", {{{kCamera, "Pitch"}, {kDji, "GimbalPitchDegree"}, {kDji, "FlightPitchDegree"}}}},
    {"CameraRoll", {{{kCamera, "Roll"}, {kDji, "GimbalRollDegree"}, {kDji, "FlightRollDegree"}}}},
    {"CameraGPSXYAccuracy", {{{kCamera, "GPSXYAccuracy"}, {kDji, "RtkStdLon"}}}, ExifAccuracy},
    {"CameraGPSZAccuracy", {{{kCamera, "GPSZAccuracy"}, {kDji, "RtkStdHgt"}}}},
    {"CameraRollPitchAccuracy", {{{kCamera, "IMURollAccuracy"}, {kCamera, "IMUPitchAccuracy"}}}},
    {"CameraYawAccuracy", {{{kCamera, "IMUYawAccuracy"}}}},
    {"CameraAdjGpsSec", {}, ExifTime},
    {"ImageHeight", {}, Height},
    {"ImageWidth", {}, Width},
    {"CalibratedFocalLength",
     {{{kCamera, "PerspectiveFocalLength"}, {kDji, "CalibratedFocalLength"}, {kDji, "DewarpData", 1}}},
     ExifFocalLength},
    {"CalibratedCX", {{{kCamera, "PrincipalPoint", 0}, {kDji, "CalibratedOpticalCenterX"}}}},
    {"CalibratedCY", {{{kCamera, "PrincipalPoint", 1}, {kDji, "CalibratedOpticalCenterY"}}}},
    {"CalibratedK1", {{{kCamera, "PerspectiveDistortion", 0}, {kDji, "DewarpData", 5}}}},
    {"CalibratedK2", {{{kCamera, "PerspectiveDistortion", 1}, {kDji, "DewarpData", 6}}}},
    {"CalibratedK3", {{{kCamera, "PerspectiveDistortion", 2}, {kDji, "DewarpData", 9}}}},
    {"CalibratedP1", {{{kCamera, "PerspectiveDistortion", 3}, {kDji, "DewarpData", 7}}}},
    {"CalibratedP2", {{{kCamera, "PerspectiveDistortion", 4}, {kDji, "DewarpData", 8}}}},
};

void Put(Tree& node, std::string_view key, const std::wstring& value) {
    node.push_back({FromUtf8(key), Tree(value)});
}

void Put(Tree& node, std::string_view key, double value) {
    Put(node, key, FromUtf8(fmt::format("{}", value)));
}

void Put(Tree& node, std::string_view key, const std::string& utf8) {
    Put(node, key, FromUtf8(utf8));
}

bool IsMissing(const std::string& value) {
    return value.empty();
}
bool IsMissing(const Number& value) {
    return !value.has_value();
}

/// Puts a key with the value of its first source that has one. `read` reads a place of XMP.
template <typename Value, typename Read>
void PutKey(Tree& node, const Photo& photo, const Key<Value>& key, Read read) {
    Value value = read(photo, XmpPlace{XmpVocabulary::Own, key.name});
    for (const XmpPlace& place : key.places) {
        if (IsMissing(value) && place.name != nullptr) {
            value = read(photo, place);
        }
    }
    if (IsMissing(value) && key.exif != nullptr) {
        value = key.exif(photo);
    }
    if constexpr (std::is_same_v<Value, Number>) {
        if (value) {
            Put(node, key.name, *value);
        }
    } else if (!value.empty()) {
        Put(node, key.name, value);
    }
}

struct Position {
    Number longitude;
    Number latitude;
    std::string wkt;
};

/// The position of the first source that has both coordinates. Positions of EXIF and DJI are on WGS 84 unless
/// EXIF names another datum.
Position PositionOf(const Photo& photo) {
    const std::string stated = XmpText(photo, {XmpVocabulary::Own, "GeographicWKT"});
    const std::string wkt = !stated.empty() || !photo.exif.IsWgs84() ? stated : kWgs84;
    const auto from = [&](const XmpPlace& longitude, const XmpPlace& latitude, const std::string& crs) {
        return Position{XmpNumber(photo, longitude), XmpNumber(photo, latitude), crs};
    };
    const Position sources[] = {
        from({XmpVocabulary::Own, "GPSLongitude"}, {XmpVocabulary::Own, "GPSLatitude"}, stated),
        from({kDji, "GpsLongitude"}, {kDji, "GpsLatitude"}, wkt),
        from({kDji, "GpsLongtitude"}, {kDji, "GpsLatitude"}, wkt),
        from({kDji, "Longitude"}, {kDji, "Latitude"}, wkt),
        {photo.exif.Degrees("Exif.GPSInfo.GPSLongitude", "Exif.GPSInfo.GPSLongitudeRef"),
         photo.exif.Degrees("Exif.GPSInfo.GPSLatitude", "Exif.GPSInfo.GPSLatitudeRef"), wkt},
    };
    for (const Position& source : sources) {
        if (source.longitude && source.latitude) {
            return source;
        }
    }
    return {{}, {}, stated};
}

void PutPosition(Tree& node, const Photo& photo) {
    const Position position = PositionOf(photo);
    if (position.longitude && position.latitude) {
        Put(node, "GPSLongitude", *position.longitude);
        Put(node, "GPSLatitude", *position.latitude);
    }
    if (!position.wkt.empty()) {
        Put(node, "GeographicWKT", position.wkt);
    }
}

std::string CameraModel(const ExifValues& exif) {
    const std::string make = exif.Text("Exif.Image.Make");
    const std::string model = exif.Text("Exif.Image.Model");
    // Many makers put their name into the model as well.
    const std::string first = make.substr(0, make.find(' '));
    return make.empty() || EqualNoCase(FromUtf8(model.substr(0, first.size())), FromUtf8(first))
               ? model
               : make + (model.empty() ? "" : " ") + model;
}

/// What is known of the image itself.
void PutImage(Tree& node, const Photo& photo) {
    const TiffFacts& facts = photo.container.facts;
    if (const std::string model = CameraModel(photo.exif); !model.empty()) {
        Put(node, "CameraModel", model);
    }
    Put(node, "FileType", std::wstring(photo.container.fileType));
    if (const Number orientation = photo.exif.Number("Exif.Image.Orientation")) {
        Put(node, "Orientation", *orientation);
    }
    Put(node, "StoredWidth", facts.width);
    Put(node, "StoredHeight", facts.height);
    Put(node, "Bands", facts.bands);
    Put(node, "BitsPerBand", facts.bits);
    Put(node, "Overviews", facts.overviews);
    if (facts.photometric >= 0) {
        Put(node, "Photometric", facts.photometric);
    }
    if (facts.pixelWidth > 0 && facts.pixelHeight > 0) {
        Put(node, "PixelWidth", facts.pixelWidth);
        Put(node, "PixelHeight", facts.pixelHeight);
    }
}

void ReadImage(const std::wstring& path, Tree& node) {
    PhotoBytes file(path);
    const Photo photo(file);
    for (const Key<std::string>& key : kTexts) {
        PutKey(node, photo, key, XmpText);
    }
    PutPosition(node, photo);
    for (const Key<Number>& key : kNumbers) {
        PutKey(node, photo, key, XmpNumber);
    }
    PutImage(node, photo);
}

/// Node of one image. Never throws; false if it could not be read.
bool MakeNode(const std::wstring& path, Tree& node) noexcept {
    try {
        Tree image;
        Put(image, "SourceFile", path);
        try {
            ReadImage(path, image);
            node.swap(image);
            return true;
        } catch (...) {
            image.clear();
            Put(image, "SourceFile", path);
            Put(image, "Error", CurrentExceptionText());
            node.swap(image);
        }
    } catch (...) {
        // Not even memory for the reason.
    }
    return false;
}

/// Fills the nodes, in the order of the paths, on as many threads as there are processors.
std::size_t MakeNodes(const std::vector<std::wstring>& paths, std::vector<Tree>& nodes) {
    constexpr std::size_t kPathsPerThread = 16;
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> good = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < paths.size(); i = next++) {
            good += MakeNode(paths[i], nodes[i]) ? 1 : 0;
        }
    };
    const std::size_t most = std::max(std::thread::hardware_concurrency(), 1U);
    const std::size_t helpers = std::min(most - 1, paths.size() / kPathsPerThread);
    std::vector<std::jthread> threads;
    threads.reserve(helpers);
    for (std::size_t i = 0; i < helpers; ++i) {
        try {
            threads.emplace_back(work);
        } catch (const std::system_error&) {
            break;  // the machine has no more threads
        }
    }
    work();
    threads.clear();
    return good;
}

}  // namespace

bool OrvexUtilities::GetExifTagPTreeForImages(const std::vector<std::wstring>& paths,
                                              boost::property_tree::wptree& tree) {
    std::vector<Tree> nodes(paths.size());
    const std::size_t good = MakeNodes(paths, nodes);
    Tree images;
    for (Tree& node : nodes) {
        images.push_back({L"Image", Tree()})->second.swap(node);
    }
    tree.clear();
    tree.push_back({L"Images", Tree()})->second.swap(images);
    return good != 0;
}

std::string OrvexUtilities::GetExifThumbnail(const std::wstring& path) {
    try {
        PhotoBytes file(path);
        const PhotoContainer photo = ReadPhotoContainer(file);
        std::string bytes = file.Text(photo.facts.thumbnail, kMostThumbnail);
        return bytes.starts_with("\xFF\xD8\xFF") ? bytes : std::string();
    } catch (...) {
        return {};
    }
}
