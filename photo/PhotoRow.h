#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "crs/LayerAssignment.h"
#include "support/Finding.h"

namespace orvex {

/// Metadata of one photo, as the layer-utilities library reads it: one member per key, in the order of the
/// keys. A key that the photo has not leaves its default, which is 0 for numbers.
struct PhotoMetadata {
    std::wstring imageUniqueId;  ///< "Not available" if missing
    std::wstring platformId;     ///< "Unknown" if missing
    std::wstring posQuality;     ///< "NONE" if missing
    std::wstring oriQuality;     ///< the same
    double gpsLongitude = 0;     ///< degrees, east is positive
    double gpsLatitude = 0;      ///< degrees, north is positive
    double gpsAltitude = 0;      ///< metres
    double cameraYaw = 0;        ///< degrees, as the file states it; the same for pitch and roll
    double cameraPitch = 0;
    double cameraRoll = 0;
    double cameraGpsXyAccuracy = 0;      ///< metres
    double cameraGpsZAccuracy = 0;       ///< metres
    double cameraRollPitchAccuracy = 0;  ///< degrees
    double cameraYawAccuracy = 0;        ///< degrees
    double cameraAdjGpsSec = 0;          ///< GPS seconds minus 1e9
    std::wstring cameraCalibrated;       ///< "TRUE", or anything else for not calibrated
    std::uint32_t imageHeight = 0;       ///< pixels
    std::uint32_t imageWidth = 0;        ///< pixels
    double calibratedFocalLength = 0;    ///< in the unit of the camera's calibration; the same for the rest
    double calibratedCx = 0;
    double calibratedCy = 0;
    double calibratedK1 = 0;
    double calibratedK2 = 0;
    double calibratedK3 = 0;
    double calibratedP1 = 0;
    double calibratedP2 = 0;
    std::wstring calibratedDate;  ///< "Not available" if missing
    std::wstring geographicWkt;   ///< CRS of the position; empty if missing
};

/// Calls `use(key, value)` for every key, in the order in which they are read.
template <typename Metadata, typename Use>
void ForEachKey(Metadata& metadata, Use use) {
    use("ImageUniqueID", metadata.imageUniqueId);
    use("PlatformID", metadata.platformId);
    use("POSQuality", metadata.posQuality);
    use("ORIQuality", metadata.oriQuality);
    use("GPSLongitude", metadata.gpsLongitude);
    use("GPSLatitude", metadata.gpsLatitude);
    use("GPSAltitude", metadata.gpsAltitude);
    use("CameraYaw", metadata.cameraYaw);
    use("CameraPitch", metadata.cameraPitch);
    use("CameraRoll", metadata.cameraRoll);
    use("CameraGPSXYAccuracy", metadata.cameraGpsXyAccuracy);
    use("CameraGPSZAccuracy", metadata.cameraGpsZAccuracy);
    use("CameraRollPitchAccuracy", metadata.cameraRollPitchAccuracy);
    use("CameraYawAccuracy", metadata.cameraYawAccuracy);
    use("CameraAdjGpsSec", metadata.cameraAdjGpsSec);
    use("CameraCalibrated", metadata.cameraCalibrated);
    use("ImageHeight", metadata.imageHeight);
    use("ImageWidth", metadata.imageWidth);
    use("CalibratedFocalLength", metadata.calibratedFocalLength);
    use("CalibratedCX", metadata.calibratedCx);
    use("CalibratedCY", metadata.calibratedCy);
    use("CalibratedK1", metadata.calibratedK1);
    use("CalibratedK2", metadata.calibratedK2);
    use("CalibratedK3", metadata.calibratedK3);
    use("CalibratedP1", metadata.calibratedP1);
    use("CalibratedP2", metadata.calibratedP2);
    use("CalibratedDate", metadata.calibratedDate);
    use("GeographicWKT", metadata.geographicWkt);
}

/// Facts of the image itself, read without its pixels. 0 and empty where the format or the reader has none.
struct PhotoImage {
    std::wstring cameraModel;
    std::wstring fileType;     ///< "JPEG", else by the extension
    std::uint32_t width = 0;   ///< pixels, as stored in the image; the metadata may differ
    std::uint32_t height = 0;  ///< pixels
    std::uint32_t bands = 0;
    std::uint32_t bitsPerBand = 0;
    std::wstring colorModel;
    std::wstring photometric;
    std::uint32_t overviews = 0;
    double pixelWidth = 0;  ///< on the ground, of a georeferenced image; 0 for none
    double pixelHeight = 0;
};

/// Digit of the first column: "0", "1", "2".
enum class PhotoState { TruePose, Read, Failed };

/// One photo as the grid, the details pane and the command line show it, read without its pixels.
struct PhotoRow {
    std::wstring path;
    PhotoState state = PhotoState::Failed;
    bool loadable = false;  ///< its metadata was read: any state but Failed
    bool threw = false;     ///< an unexpected exception ended the reading
    std::wstring
        summary;  ///< one line: "True Pose Photo", the worst finding or "OK"; the reason if it failed
    std::vector<Finding> findings;  ///< worst first
    PhotoMetadata metadata;
    bool statesPosition = false;  ///< the file has a longitude and a latitude, even if they are 0
    std::wstring timeUtc;         ///< of cameraAdjGpsSec; empty if the photo has no GPS time
    PhotoImage image;
    CrsPtr crs;                   ///< of the position; never null
    std::uint64_t fileSize = 0;   ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;  ///< milliseconds since 1970-01-01 UTC; 0 when unknown
    LayerPlace place;             ///< set by the page
};

/// Reads one photo's metadata. Never throws. Safe from any thread; nothing is written.
PhotoRow InspectPhoto(const std::wstring& path);

/// Row of a photo whose reading threw.
PhotoRow UnreadPhoto(const std::wstring& path, const std::wstring& message);

/// State by the findings, for counts and filters; the icon follows `state` instead.
LoadFlag LoadFlagOf(const PhotoRow& row);

/// True for a photo that has a place on the map: a longitude and a latitude in range that are not both 0.
bool HasPosition(const PhotoRow& row);

/// True for a photo with longitude, latitude, altitude (none of them 0), image size and a CRS of the
/// position.
bool IsTruePose(const PhotoRow& row);

/// What a photo lacks to be a true pose photo, in sentences; empty if nothing.
std::vector<std::wstring> WhyNotTruePose(const PhotoRow& row);

/// All findings, one a line, and that the project has the file; empty when all is well.
std::wstring FindingsText(const PhotoRow& row);

/// Digit of column 0: "0" true pose, "1" read, "2" failed.
std::wstring PhotoStateDigit(PhotoState state);

/// Image of column 0, an index in the dialog's image list.
int PhotoStateImage(PhotoState state);

}  // namespace orvex
