#include "host/app/PhotoJobs.h"

#include <ogr_spatialref.h>

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

#include "host/app/RecordFiles.h"
#include "host/dem/HostGdal.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/Geocoding.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/ProjectPath.h"
#include "support/Text.h"

namespace orvex {

namespace {

using boost::property_tree::wptree;

/// Photos that are read at a time: enough for all processors, few enough to stop soon.
constexpr std::size_t kAtATime = 64;
constexpr int kWgs84 = 4326;

/// Turns positions on other datums into such on WGS 84. One that states no coordinate system, or one that
/// nobody can read, is taken as it is.
class ToWgs84 {
  public:
    ToWgs84() { wgs84_.SetWellKnownGeogCS("WGS84"); }

    void Convert(const std::wstring& wkt, double& longitude, double& latitude) {
        const auto [known, isNew] = fromWkt_.try_emplace(wkt);
        if (isNew) {
            known->second = Make(ToUtf8(wkt));
        }
        double x = longitude;
        double y = latitude;
        if (known->second != nullptr && known->second->Transform(1, &x, &y) != 0) {
            longitude = x;
            latitude = y;
        }
    }

  private:
    using Transformation = std::unique_ptr<OGRCoordinateTransformation>;

    Transformation Make(const std::string& wkt) {
        OGRSpatialReference crs;
        crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        wgs84_.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        if (wkt.empty() || crs.importFromWkt(wkt.c_str()) != OGRERR_NONE || crs.IsGeographic() == 0 ||
            crs.IsSameGeogCS(&wgs84_) != 0) {
            return nullptr;
        }
        return Transformation(OGRCreateCoordinateTransformation(&crs, &wgs84_));
    }

    const GdalErrorScope errors_;
    OGRSpatialReference wgs84_;
    std::map<std::wstring, Transformation> fromWkt_;
};

/// Longitude and latitude; nullopt where they are missing, out of range, or both 0, as cameras write them
/// before they know where they are.
std::optional<std::array<double, 3>> PositionOf(const wptree& image, ToWgs84& toWgs84) {
    auto longitude = image.get_optional<double>(L"GPSLongitude");
    auto latitude = image.get_optional<double>(L"GPSLatitude");
    const double altitude = image.get(L"GPSAltitude", 0.0);
    if (!longitude || !latitude || !(std::abs(*longitude) <= 180) || !(std::abs(*latitude) <= 90) ||
        (*longitude == 0 && *latitude == 0)) {
        return std::nullopt;
    }
    toWgs84.Convert(image.get(L"GeographicWKT", std::wstring()), *longitude, *latitude);
    return std::array<double, 3>{*longitude, *latitude, std::isfinite(altitude) ? altitude : 0};
}

/// From 0 up to 360 degrees.
std::optional<double> HeadingOf(const wptree& image) {
    const auto yaw = image.get_optional<double>(L"CameraYaw");
    if (!yaw || !std::isfinite(*yaw)) {
        return std::nullopt;
    }
    const double turned = std::fmod(*yaw, 360);
    return turned < 0 ? turned + 360 : turned;
}

PhotoRecord RecordOf(const wptree& image, ToWgs84& toWgs84) {
    PhotoRecord photo;
    photo.path = image.get(L"SourceFile", std::wstring());
    photo.position = PositionOf(image, toWgs84);
    photo.heading = HeadingOf(image);
    photo.camera = image.get(L"PlatformID", std::wstring());
    const double tick = image.get(L"CameraAdjGpsSec", 0.0);
    if (tick > 0 && std::isfinite(tick)) {
        photo.masterTick = tick;
        photo.timeUtc = FromUtf8(TimeConverter::AdjGPSSecsToUTC(tick, false));
    }
    return photo;
}

void ReadSome(const std::vector<std::wstring>& paths, ToWgs84& toWgs84, ReadPhotos& read) {
    wptree tree;
    OrvexUtilities::GetExifTagPTreeForImages(paths, tree);
    for (const auto& [name, image] : tree.get_child(L"Images")) {
        if (const auto error = image.get_optional<std::wstring>(L"Error")) {
            read.failures.push_back({image.get(L"SourceFile", std::wstring()), *error});
        } else {
            read.photos.push_back(RecordOf(image, toWgs84));
        }
    }
}

NewFile FileOf(const PhotoRecord& photo, const std::wstring& layer, const std::string& wkt) {
    NewFile added{layer, wkt, {}};
    added.file.path = photo.path;
    added.file.photo = {photo.position, photo.heading, photo.timeUtc};
    return added;
}

std::wstring OptionLine(StringId caption, const std::wstring& value) {
    return L"  " + Text(caption) + L": " + value + L"\n";
}

}  // namespace

std::wstring PhotoFolderOf(const std::wstring& projectFolder) {
    return projectFolder.empty() ? projectFolder : JoinPath(projectFolder, L"Photos");
}

std::wstring PhotoLayerPath(const std::wstring& typed, const std::wstring& projectFolder) {
    std::wstring path = ResolveProjectPath(typed, projectFolder);
    if (!ToPath(path).is_absolute()) {
        path = JoinPath(PhotoFolderOf(projectFolder), path);
    }
    return UpperExtensionOf(path) == L".SHP" ? path : path + L".shp";
}

ReadPhotos ReadPhotoMetadata(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress) {
    SetUpGdal();
    ToWgs84 toWgs84;
    ReadPhotos read;
    progress.SetRange(paths.size());
    for (std::size_t first = 0; first < paths.size(); first += kAtATime) {
        read.stopped = progress.IsCancelled();
        if (read.stopped) {
            break;
        }
        progress.SetText(FormatText(Text(text::kPhotoReadingProgress), {first + 1, paths.size()}));
        const auto begin = paths.begin() + static_cast<std::ptrdiff_t>(first);
        const std::size_t count = std::min(kAtATime, paths.size() - first);
        ReadSome({begin, begin + static_cast<std::ptrdiff_t>(count)}, toWgs84, read);
        progress.SetPosition(first + count);
    }
    return read;
}

PhotoImport ImportPhotos(const std::vector<std::wstring>& paths, const PhotoTarget& target,
                         Kst::ProgressIf& progress) {
    PhotoImport import;
    const ReadPhotos read = ReadPhotoMetadata(paths, progress);
    import.failures = read.failures;
    import.layer.stopped = read.stopped || progress.IsCancelled();
    if (import.layer.stopped) {
        return import;
    }
    progress.SetText(FileNameOf(target.path));
    import.layer = WritePhotoLayer(read.photos, target, progress);
    const std::wstring& written = import.layer.path.empty() ? target.path : import.layer.path;
    const std::wstring layer = WithExtension(FileNameOf(written), L"");
    const std::string wkt = OrvexUtilities::CrsGetPrettyWktFromEPSG(kWgs84);
    std::ranges::transform(read.photos, std::back_inserter(import.files),
                           [&](const PhotoRecord& photo) { return FileOf(photo, layer, wkt); });
    return import;
}

PhotoTarget PhotoTargetOf(const AddFilesParams& record, const std::wstring& projectFolder) {
    PhotoTarget target;
    target.path = PhotoLayerPath(
        record.photoLayer.empty() ? Text(text::kDefaultPhotoLayer) : record.photoLayer, projectFolder);
    target.append = !record.photoLayer.empty() && FileExists(target.path);
    target.replace = record.photoReplaceExisting;
    return target;
}

std::wstring PhotosText(const AddFilesParams& record) {
    if (record.photoFiles.empty()) {
        return {};
    }
    std::map<std::wstring, std::wstring> linesOfFolder;
    for (const std::wstring& path : record.photoFiles) {
        linesOfFolder[FolderOf(path)] += L"  " + FileNameOf(path) + L"\n";
    }
    std::wstring text = FormatText(Text(text::kRecordPhotoFiles), {record.photoFiles.size()}) + L"\n";
    for (const auto& [folder, lines] : linesOfFolder) {
        text.append(folder).append(L"\n").append(lines);
    }
    const bool isNew = record.photoLayer.empty();
    text += L"\n" + Text(text::kRecordOptions) + L"\n" +
            OptionLine(text::kRecordPhotoLayer, isNew ? Text(text::kRecordPhotoLayerNew) : record.photoLayer);
    if (!isNew) {
        text += OptionLine(text::kRecordPhotoReplace,
                           Text(record.photoReplaceExisting ? text::kRecordYes : text::kRecordNo));
    }
    return text;
}

}  // namespace orvex
