#include "photo/PhotoSeries.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum FindingSeverity;

constexpr FindingKind kSamePosition{"same-position", Warning, text::kPhotoSamePosition};
constexpr FindingKind kSameExposure{"same-exposure", Note, text::kPhotoSameExposure};
constexpr FindingKind kSameTime{"same-time", Warning, text::kPhotoSameTime};
constexpr FindingKind kTimeBackwards{"time-backwards", Warning, text::kPhotoTimeBackwards};
constexpr FindingKind kFocalLengthDiffers{"focal-length-differs", Warning, text::kPhotoFocalLengthDiffers};
constexpr FindingKind kSizeDiffers{"image-size-differs", Warning, text::kPhotoSizeDiffers};
constexpr FindingKind kAltitudeJumps{"altitude-jumps", Warning, text::kPhotoAltitudeJumps};
constexpr const FindingKind* kKinds[] = {&kSamePosition,  &kSameExposure,       &kSameTime,
                                         &kTimeBackwards, &kFocalLengthDiffers, &kSizeDiffers,
                                         &kAltitudeJumps};

// A drone that climbs does so over several photos; a receiver that errs does it in one.
constexpr double kJump = 50;
constexpr std::size_t kFewest = 3;  // photos of which most can agree

using Photos = std::vector<PhotoRow*>;

void Add(PhotoRow& row, const FindingKind& kind, std::initializer_list<FormatArg> arguments) {
    row.findings.push_back(MakeFinding(kind, arguments));
}

void RemoveOldFindings(PhotoRow& row) {
    std::erase_if(row.findings, [](const Finding& finding) {
        return std::ranges::any_of(
            kKinds, [&](const FindingKind* kind) { return std::string_view(kind->code) == finding.code; });
    });
}

void SumUp(PhotoRow& row) {
    std::ranges::stable_sort(row.findings, std::ranges::greater(), &Finding::severity);
    if (row.state == PhotoState::Read) {
        row.summary = SummaryOf(row.findings);
    }
}

auto PositionOf(const PhotoRow& row) {
    const PhotoMetadata& data = row.metadata;
    return std::tuple(data.gpsLongitude, data.gpsLatitude, data.gpsAltitude);
}

double TimeOf(const PhotoRow& row) {
    return row.metadata.cameraAdjGpsSec;
}

/// Calls `compare` with each photo and another one whose key is the same.
template <typename KeyOf, typename Compare>
void ForEqual(Photos photos, KeyOf keyOf, Compare compare) {
    const auto keyOfPhoto = [&](const PhotoRow* row) { return keyOf(*row); };
    std::ranges::stable_sort(photos, {}, keyOfPhoto);
    for (std::size_t i = 0; i < photos.size(); ++i) {
        const bool likeBefore = i > 0 && keyOfPhoto(photos[i - 1]) == keyOfPhoto(photos[i]);
        const bool likeNext = i + 1 < photos.size() && keyOfPhoto(photos[i + 1]) == keyOfPhoto(photos[i]);
        if (likeBefore || likeNext) {
            compare(*photos[i], *photos[likeBefore ? i - 1 : i + 1]);
        }
    }
}

template <typename Holds>
Photos Those(std::span<PhotoRow* const> photos, Holds holds) {
    Photos found;
    std::ranges::copy_if(photos, std::back_inserter(found), [&](const PhotoRow* row) { return holds(*row); });
    return found;
}

/// One position at two times is a receiver that stands still; at one time it is a rig of cameras, or a copy.
void FindEqualPositions(const Photos& photos) {
    ForEqual(Those(photos, HasPosition), PositionOf, [](PhotoRow& row, const PhotoRow& other) {
        const bool isOneExposure = TimeOf(row) != 0 && TimeOf(row) == TimeOf(other);
        Add(row, isOneExposure ? kSameExposure : kSamePosition, {FileNameOf(other.path)});
    });
}

void FindEqualTimes(const Photos& photos) {
    const auto hasTime = [](const PhotoRow& row) { return TimeOf(row) != 0 && HasPosition(row); };
    ForEqual(Those(photos, hasTime), TimeOf, [](PhotoRow& row, const PhotoRow& other) {
        if (PositionOf(row) != PositionOf(other)) {
            Add(row, kSameTime, {FileNameOf(other.path)});
        }
    });
}

void FindTimesBackwards(std::span<PhotoRow* const> folder) {
    const PhotoRow* before = nullptr;
    for (PhotoRow* row : folder) {
        if (TimeOf(*row) == 0) {
            continue;
        }
        if (before != nullptr && TimeOf(*row) < TimeOf(*before)) {
            Add(*row, kTimeBackwards, {FileNameOf(before->path)});
        }
        before = row;
    }
}

/// Calls `differs` with each photo whose value is another than that of most, and with that value. Photos
/// without a value (a default one) do not count.
template <typename ValueOf, typename Differs>
void ForOutliers(std::span<PhotoRow* const> folder, ValueOf valueOf, Differs differs) {
    using Value = decltype(valueOf(*folder.front()));
    std::map<Value, std::size_t> counts;
    std::size_t total = 0;
    for (const PhotoRow* row : folder) {
        if (valueOf(*row) != Value{}) {
            ++counts[valueOf(*row)];
            ++total;
        }
    }
    const auto most = std::ranges::max_element(counts, {}, [](const auto& count) { return count.second; });
    if (total < kFewest || most->second * 2 <= total) {
        return;
    }
    for (PhotoRow* row : folder) {
        if (valueOf(*row) != Value{} && valueOf(*row) != most->first) {
            differs(*row, most->first);
        }
    }
}

void FindOtherCameras(std::span<PhotoRow* const> folder) {
    const auto focalLength = [](const PhotoRow& row) { return row.metadata.calibratedFocalLength; };
    ForOutliers(folder, focalLength, [&](PhotoRow& row, double most) {
        Add(row, kFocalLengthDiffers, {focalLength(row), most});
    });
    // The longer side first: a photo that is stored upright comes from the same camera.
    const auto size = [](const PhotoRow& row) {
        const PhotoMetadata& data = row.metadata;
        return std::pair(std::max(data.imageWidth, data.imageHeight),
                         std::min(data.imageWidth, data.imageHeight));
    };
    ForOutliers(folder, size, [&](PhotoRow& row, const auto& most) {
        Add(row, kSizeDiffers, {size(row).first, size(row).second, most.first, most.second});
    });
}

void FindJumps(std::span<PhotoRow* const> folder) {
    const Photos photos = Those(folder, [](const PhotoRow& row) { return row.metadata.gpsAltitude != 0; });
    for (std::size_t i = 1; i + 1 < photos.size(); ++i) {
        const double altitude = photos[i]->metadata.gpsAltitude;
        const double before = altitude - photos[i - 1]->metadata.gpsAltitude;
        const double after = altitude - photos[i + 1]->metadata.gpsAltitude;
        const double jump = std::min(std::abs(before), std::abs(after));
        if (before * after > 0 && jump > kJump) {
            Add(*photos[i], kAltitudeJumps, {jump});
        }
    }
}

/// The photos that were read, by folder and within it in the order in which a person lists them.
Photos InOrder(std::vector<PhotoRow>& rows, std::vector<std::wstring>& folders) {
    struct Place {
        std::wstring folder;
        std::wstring name;
        PhotoRow* row;
    };
    std::vector<Place> places;
    for (PhotoRow& row : rows) {
        if (row.loadable) {
            places.push_back({PathKey(FolderOf(row.path)), NaturalKey(FileNameOf(row.path)), &row});
        }
    }
    std::ranges::stable_sort(places, {},
                             [](const Place& place) { return std::tie(place.folder, place.name); });
    Photos photos;
    for (Place& place : places) {
        photos.push_back(place.row);
        folders.push_back(std::move(place.folder));
    }
    return photos;
}

}  // namespace

void ComparePhotos(std::vector<PhotoRow>& rows) {
    std::ranges::for_each(rows, RemoveOldFindings);
    std::vector<std::wstring> folders;
    const Photos photos = InOrder(rows, folders);
    FindEqualPositions(photos);
    FindEqualTimes(photos);
    for (std::size_t first = 0; first < photos.size();) {
        std::size_t end = first + 1;
        while (end < photos.size() && folders[end] == folders[first]) {
            ++end;
        }
        const std::span folder(photos.data() + first, end - first);
        FindTimesBackwards(folder);
        FindOtherCameras(folder);
        FindJumps(folder);
        first = end;
    }
    std::ranges::for_each(rows, SumUp);
}

}  // namespace orvex
