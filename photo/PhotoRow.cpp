#include "photo/PhotoRow.h"

#include <boost/property_tree/ptree.hpp>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include "orvexcommon/Geocoding.h"
#include "orvexcommon/OrvexUtilities.h"
#include "photo/PhotoDriver.h"
#include "photo/PhotoFindings.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Tree = boost::property_tree::wptree;

void Take(const Tree& node, std::string_view key, std::wstring& value) {
    if (const auto child = node.get_child_optional(FromUtf8(key))) {
        value = child->data();
    }
}

/// A number as the tree holds it; the tree's own conversion follows the process's locale.
template <typename Number>
void Take(const Tree& node, std::string_view key, Number& value) {
    const auto child = node.get_child_optional(FromUtf8(key));
    const std::string text = child ? ToUtf8(child->data()) : std::string();
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (!text.empty() && error == std::errc() && end == text.data() + text.size() &&
        std::isfinite(static_cast<double>(number))) {
        value = number;
    }
}

PhotoMetadata MetadataOf(const Tree& node) {
    PhotoMetadata data;
    data.imageUniqueId = data.cameraCalibrated = data.calibratedDate = Text(text::kPhotoNotAvailable);
    data.platformId = Text(text::kUnknown);
    data.posQuality = data.oriQuality = L"NONE";
    ForEachKey(data, [&](std::string_view key, auto& value) { Take(node, key, value); });
    return data;
}

std::wstring ColorModelText(std::uint32_t bands, std::uint32_t bits) {
    if (bands == 0) {
        return {};
    }
    return Text(bands >= 3 ? text::kColorRgb : bits == 1 ? text::kColorBlackAndWhite : text::kColorGrayscale);
}

/// TIFF's codes of PhotometricInterpretation.
std::wstring PhotometricText(std::int32_t code) {
    switch (code) {
        case -1:
            return {};
        case 0:
            return Text(text::kPhotometricWhiteIsZero);
        case 1:
            return Text(text::kPhotometricBlackIsZero);
        case 2:
            return Text(text::kColorRgb);
        case 3:
            return Text(text::kPhotometricPalette);
        case 4:
            return Text(text::kPhotometricTransparencyMask);
        case 5:
            return L"CMYK";
        case 6:
            return L"YCbCr";
        case 8:
            return L"CIE L*a*b*";
        default:
            return Text(text::kUnknown);
    }
}

PhotoImage ImageOf(const Tree& node) {
    PhotoImage image;
    std::int32_t photometric = -1;
    Take(node, "CameraModel", image.cameraModel);
    Take(node, "FileType", image.fileType);
    Take(node, "StoredWidth", image.width);
    Take(node, "StoredHeight", image.height);
    Take(node, "Bands", image.bands);
    Take(node, "BitsPerBand", image.bitsPerBand);
    Take(node, "Overviews", image.overviews);
    Take(node, "Photometric", photometric);
    Take(node, "PixelWidth", image.pixelWidth);
    Take(node, "PixelHeight", image.pixelHeight);
    image.colorModel = ColorModelText(image.bands, image.bitsPerBand);
    image.photometric = PhotometricText(photometric);
    return image;
}

std::wstring UtcOf(const PhotoMetadata& metadata) {
    if (!(metadata.cameraAdjGpsSec > 0)) {
        return {};
    }
    TimeConverter::Init();
    return FromUtf8(TimeConverter::AdjGPSSecsToUTC(metadata.cameraAdjGpsSec, false));
}

void ReadMetadata(PhotoRow& row) {
    Tree tree;
    OrvexUtilities::GetExifTagPTreeForImages({row.path}, tree);
    const Tree& node = tree.get_child(L"Images").front().second;
    row.metadata = MetadataOf(node);
    row.statesPosition = node.count(L"GPSLongitude") != 0 && node.count(L"GPSLatitude") != 0;
    row.image = ImageOf(node);
    if (const auto error = node.get_child_optional(L"Error")) {
        // It may be an image of a format that has no such metadata.
        const std::optional<PhotoImage> image = ReadImageWithDriver(row.path);
        if (!image) {
            throw LDataError(error->data());
        }
        row.image = *image;
        row.image.colorModel = ColorModelText(image->bands, image->bitsPerBand);
        row.metadata.imageWidth = image->width;
        row.metadata.imageHeight = image->height;
    }
}

void Read(PhotoRow& row) {
    ReadMetadata(row);
    row.timeUtc = UtcOf(row.metadata);
    row.crs = DescribeCrs(ToUtf8(row.metadata.geographicWkt));
    row.loadable = true;
    row.findings = ValidatePhoto(row);
    const bool isTruePose = IsTruePose(row);
    row.state = isTruePose ? PhotoState::TruePose : PhotoState::Read;
    row.summary = isTruePose ? Text(text::kTruePosePhoto) : SummaryOf(row.findings);
}

/// The row of a photo that cannot be read: what is wrong with it, and nothing else.
void Refuse(PhotoRow& row, const std::wstring& reason) {
    row.loadable = false;
    row.state = PhotoState::Failed;
    row.metadata = {};
    row.image = {};
    row.timeUtc.clear();
    row.crs = DescribeCrs({});
    constexpr std::size_t kBuffer = 260;
    row.summary = FormatText(Text(text::kPhotoMetadataItemFailed), {FileNameOf(row.path)}, kBuffer) + L"\n";
    row.findings = {{FindingSeverity::Error, reason, "unreadable"}};
}

}  // namespace

PhotoRow InspectPhoto(const std::wstring& path) {
    PhotoRow row;
    row.path = path;
    row.crs = DescribeCrs({});
    row.modifiedMs = ModifiedMs(path);
    row.fileSize = FileSizeOf(path).value_or(0);
    try {
        Read(row);
    } catch (const LDataError& error) {
        Refuse(row, error.Text());
    } catch (...) {
        row.threw = true;
        Refuse(row, CurrentExceptionText());
    }
    return row;
}

PhotoRow UnreadPhoto(const std::wstring& path, const std::wstring& message) {
    PhotoRow row;
    row.path = path;
    row.threw = true;
    Refuse(row, message);
    return row;
}

LoadFlag LoadFlagOf(const PhotoRow& row) {
    return LoadFlagFor(row.loadable, row.findings, row.place);
}

bool HasPosition(const PhotoRow& row) {
    const double longitude = row.metadata.gpsLongitude;
    const double latitude = row.metadata.gpsLatitude;
    return (longitude != 0 || latitude != 0) && std::abs(longitude) <= 180 && std::abs(latitude) <= 90;
}

bool IsTruePose(const PhotoRow& row) {
    return row.loadable && WhyNotTruePose(row).empty();
}

std::wstring FindingsText(const PhotoRow& row) {
    return StateLines(row);
}

std::wstring PhotoStateDigit(PhotoState state) {
    return std::to_wstring(static_cast<int>(state));
}

int PhotoStateImage(PhotoState state) {
    constexpr ImageIndex kImages[] = {kImageLoadable, kImageWarning, kImageNotLoadable};
    return kImages[static_cast<int>(state)];
}

}  // namespace orvex
