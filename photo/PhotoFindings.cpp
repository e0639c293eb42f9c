#include "photo/PhotoFindings.h"

#include <algorithm>
#include <iterator>

#include "orvexcommon/Geocoding.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum FindingSeverity;
using Findings = std::vector<Finding>;

constexpr FindingKind kNoPosition{"no-position", Warning, text::kPhotoNoPosition};
constexpr FindingKind kPositionZero{"position-zero", Warning, text::kPhotoPositionZero};
constexpr FindingKind kOutOfRange{"position-out-of-range", Warning, text::kPhotoPositionOutOfRange};
constexpr FindingKind kCoordinateZero{"coordinate-zero", Note, text::kPhotoCoordinateZero};
constexpr FindingKind kNoAltitude{
    "no-altitude", Note, text::kPhotoNoAltitude, {.member = "/photo/GPSAltitude"}};
constexpr FindingKind kNoSize{
    "no-image-size", Note, text::kPhotoNoImageSize, {.member = "/photo/ImageWidth"}};
constexpr FindingKind kNoCrs{"no-crs", Note, text::kPhotoNoPositionCrs, {.member = "/photo/GeographicWKT"}};
constexpr FindingKind kCrsUnreadable{
    "crs-unreadable", Warning, text::kCrsUnreadable, {.member = "/photo/GeographicWKT"}};
constexpr FindingKind kNoTime{
    "no-gps-time", Note, text::kPhotoNoGpsTime, {.member = "/photo/CameraAdjGpsSec"}};
constexpr FindingKind kBeyondLeapSeconds{
    "beyond-leap-seconds", Note, text::kPhotoTimeBeyondLeapSeconds, {.member = "/photo/timeUtc"}};
constexpr FindingKind kNoFocalLength{
    "no-focal-length", Note, text::kPhotoNoFocalLength, {.member = "/photo/CalibratedFocalLength"}};
constexpr FindingKind kAccuracyAbsurd{"accuracy-absurd", Warning, text::kPhotoAccuracyAbsurd};
constexpr FindingKind kSizeContradicts{
    "size-contradicts", Note, text::kPhotoSizeContradicts, {.member = "/photo/ImageWidth"}};

/// An accuracy, and above which value it is of no use. 0 is a missing one.
struct Accuracy {
    double PhotoMetadata::*value;
    double most;
    StringId caption;
    const char* member;
};
constexpr Accuracy kAccuracies[] = {
    {&PhotoMetadata::cameraGpsXyAccuracy, 1000, text::kPhotoXyAccuracy, "/photo/CameraGPSXYAccuracy"},
    {&PhotoMetadata::cameraGpsZAccuracy, 1000, text::kPhotoZAccuracy, "/photo/CameraGPSZAccuracy"},
    {&PhotoMetadata::cameraRollPitchAccuracy, 180, text::kPhotoRollPitchAccuracy,
     "/photo/CameraRollPitchAccuracy"},
    {&PhotoMetadata::cameraYawAccuracy, 180, text::kPhotoYawAccuracy, "/photo/CameraYawAccuracy"},
};

/// What a photo lacks to be a true pose photo.
Findings PoseFindings(const PhotoRow& row) {
    const PhotoMetadata& data = row.metadata;
    Findings findings;
    if (data.gpsLongitude == 0 && data.gpsLatitude == 0) {
        findings.push_back(MakeFinding(row.statesPosition ? kPositionZero : kNoPosition));
    } else if (data.gpsLongitude == 0 || data.gpsLatitude == 0) {
        findings.push_back(MakeFinding(kCoordinateZero));
    }
    if (data.gpsAltitude == 0) {
        findings.push_back(MakeFinding(kNoAltitude));
    }
    if (data.imageHeight == 0 || data.imageWidth == 0) {
        findings.push_back(MakeFinding(kNoSize));
    }
    if (data.geographicWkt.empty()) {
        findings.push_back(MakeFinding(kNoCrs));
    }
    return findings;
}

void CheckPlace(const PhotoRow& row, Findings& findings) {
    const PhotoMetadata& data = row.metadata;
    if ((data.gpsLongitude != 0 || data.gpsLatitude != 0) && !HasPosition(row)) {
        findings.push_back(MakeFinding(kOutOfRange, {data.gpsLongitude, data.gpsLatitude}));
    }
    if (!data.geographicWkt.empty() && row.crs->name.empty()) {
        findings.push_back(MakeFinding(kCrsUnreadable));
    }
}

void CheckTime(const PhotoRow& row, Findings& findings) {
    if (row.metadata.cameraAdjGpsSec == 0) {
        findings.push_back(MakeFinding(kNoTime));
    }
    const std::wstring known = FromUtf8(TimeConverter::LeapSecondsKnownUntil());
    if (row.timeUtc.substr(0, known.size()) > known) {
        findings.push_back(MakeFinding(kBeyondLeapSeconds, {known}));
    }
}

void CheckCamera(const PhotoRow& row, Findings& findings) {
    const PhotoMetadata& data = row.metadata;
    const PhotoImage& image = row.image;
    if (data.calibratedFocalLength == 0) {
        findings.push_back(MakeFinding(kNoFocalLength));
    }
    for (const Accuracy& accuracy : kAccuracies) {
        const double value = data.*accuracy.value;
        if (value < 0 || value > accuracy.most) {
            findings.push_back(MakeFinding(kAccuracyAbsurd, {Text(accuracy.caption), value}));
            findings.back().where.member = accuracy.member;
        }
    }
    if (image.width != 0 && data.imageWidth != 0 &&
        (image.width != data.imageWidth || image.height != data.imageHeight)) {
        findings.push_back(
            MakeFinding(kSizeContradicts, {data.imageWidth, data.imageHeight, image.width, image.height}));
    }
}

}  // namespace

std::vector<Finding> ValidatePhoto(const PhotoRow& row) {
    Findings findings = PoseFindings(row);
    CheckPlace(row, findings);
    CheckTime(row, findings);
    CheckCamera(row, findings);
    std::ranges::stable_sort(findings, std::ranges::greater(), &Finding::severity);
    return findings;
}

std::vector<std::wstring> WhyNotTruePose(const PhotoRow& row) {
    if (!row.loadable) {
        return {FindingLines(row.findings)};
    }
    std::vector<std::wstring> sentences;
    std::ranges::transform(PoseFindings(row), std::back_inserter(sentences), &Finding::text);
    return sentences;
}

}  // namespace orvex
