#include "photo/PhotoColumns.h"

#include <iterator>
#include <optional>
#include <type_traits>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

template <auto Member>
GridCell Of(const PhotoRow& row) {
    const auto& value = row.metadata.*Member;
    if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>) {
        return row.loadable ? GridCell(static_cast<double>(value)) : GridCell();
    } else {
        return row.loadable ? GridCell(value) : GridCell();
    }
}

template <auto Member>
GridCell OfImage(const PhotoRow& row) {
    const auto& value = row.image.*Member;
    if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>) {
        return value != 0 ? GridCell(static_cast<double>(value)) : GridCell();
    } else {
        return value;
    }
}

/// Overviews of an image that could be read, where none is a fact as well.
GridCell Overviews(const PhotoRow& row) {
    return row.image.bands != 0 ? GridCell(static_cast<double>(row.image.overviews)) : GridCell();
}

template <auto Member>
GridCell Position(const PhotoRow& row) {
    return HasPosition(row) ? GridCell(row.metadata.*Member) : GridCell();
}

/// A text of the CRS; without one "Unknown".
template <auto Member>
GridCell OfCrs(const PhotoRow& row) {
    if (!row.loadable) {
        return {};
    }
    const std::wstring& shown = (*row.crs).*Member;
    return shown.empty() ? Text(text::kUnknown) : shown;
}

/// Positions and heights are in metres unless the CRS says otherwise; degrees have no linear unit.
GridCell LinearUnit(const PhotoRow& row) {
    if (!row.loadable) {
        return {};
    }
    const std::wstring& unit = row.crs->linearUnits;
    const bool isStated = !unit.empty() && unit != Text(text::kUnknown) && !row.crs->isGeographic;
    return isStated ? unit : std::wstring(L"Meters");
}

GridCell Calibrated(const PhotoRow& row) {
    if (!row.loadable) {
        return {};
    }
    return std::wstring(row.metadata.cameraCalibrated == L"TRUE" ? L"TRUE" : L"FALSE");
}

GridCell ImageSize(const PhotoRow& row) {
    const PhotoMetadata& metadata = row.metadata;
    constexpr std::size_t kBuffer = 260;
    return metadata.imageWidth == 0 || metadata.imageHeight == 0
               ? GridCell()
               : FormatText(L"%d x %d", {metadata.imageWidth, metadata.imageHeight}, kBuffer);
}

GridCell ProjectionCode(const PhotoRow& row) {
    if (!row.loadable) {
        return {};
    }
    return row.crs->epsg == 0 ? Text(text::kProjectionCodeNone)
                              : Text(text::kEpsgPrefix) + std::to_wstring(row.crs->epsg);
}

GridCell PixelSizes(const PhotoRow& row) {
    const PhotoImage& image = row.image;
    return image.pixelWidth > 0
               ? GridCell(FormatText(L"%.8lf x %.8lf", {image.pixelWidth, image.pixelHeight}))
               : GridCell();
}

GridCell Size(const PhotoRow& row) {
    return row.fileSize == 0 ? GridCell() : GridCell(static_cast<double>(row.fileSize) * 1e-6);
}

GridCell Modified(const PhotoRow& row) {
    return row.modifiedMs == 0 ? GridCell() : GridCell(row.modifiedMs);
}

GridCell Summary(const PhotoRow& row) {
    return row.state == PhotoState::TruePose ? row.summary : StateText(row);
}

std::optional<std::uint32_t> SummaryColour(const PhotoRow& row) {
    constexpr std::uint32_t kGreen = 0x008000;
    return row.state == PhotoState::TruePose ? std::optional(kGreen) : std::nullopt;
}

std::wstring PathText(const PhotoRow& row) {
    return row.path;
}

/// Degrees need more digits than metres.
const wchar_t* PixelSizeFormat(const PhotoRow& row) {
    return row.crs->isGeographic ? L"%.8lf" : nullptr;
}

constexpr const wchar_t* kCount = L"%.0f";
constexpr const wchar_t* kValue = L"%.8f";
constexpr auto kRight = HeaderAlign::Right;

constexpr GridColumn TextColumn(const char* name, StringId caption, int width = 200) {
    return {.name = name, .caption = caption, .width = width, .maximumWidth = width};
}

constexpr GridColumn NumberColumn(const char* name, StringId caption, const wchar_t* format) {
    return {.name = name,
            .caption = caption,
            .width = 200,
            .kind = CellKind::Number,
            .format = format,
            .align = kRight,
            .maximumWidth = 200};
}

constexpr GridColumn Basic(GridColumn column) {
    column.basic = true;
    return column;
}

constexpr GridColumn WithTooltip(GridColumn column, StringId tooltip) {
    column.tooltip = tooltip;
    return column;
}

constexpr GridColumn WithFooter(GridColumn column, FooterKind footer) {
    column.footer = footer;
    return column;
}

constexpr GridColumn WithSpare(GridColumn column) {
    column.takesSpare = true;
    return column;
}

constexpr GridColumn CalledCrs(GridColumn column) {
    column.alsoKnownAs = "crs";
    return column;
}

using Data = PhotoMetadata;

constexpr Column<PhotoRow> kColumns[] = {
    {{.name = "loadFlag",
      .width = 18,
      .kind = CellKind::Flag,
      .tooltip = text::kStatusIconTooltip,
      .basic = true,
      .frozen = true,
      .resizable = false,
      .headerIcon = kImageLoadable},
     [](const PhotoRow& row) { return GridCell(PhotoStateDigit(row.state)); },
     {.tooltip = FindingsText,
      .icon = [](const PhotoRow& row) { return row.place.isAwaited ? -1 : PhotoStateImage(row.state); },
      .words = [](const PhotoRow& row) { return LoadFlagText(LoadFlagOf(row)); }}},
    {Basic(TextColumn("timeUtc", text::kPhotoTimeUtc, 300)),
     [](const PhotoRow& row) { return GridCell(row.timeUtc); }},
    {TextColumn("posQuality", text::kPhotoPositionQuality), Of<&Data::posQuality>},
    {TextColumn("oriQuality", text::kPhotoOrientationQuality), Of<&Data::oriQuality>},
    {TextColumn("path", text::kPath), [](const PhotoRow& row) { return GridCell(row.path); }},
    {WithFooter(Basic(TextColumn("fileName", text::kFileName)), FooterKind::Count),
     [](const PhotoRow& row) { return GridCell(FileNameOf(row.path)); },
     {.tooltip = PathText}},
    {TextColumn("folder", text::kFolder, 300),
     [](const PhotoRow& row) { return GridCell(FolderOf(row.path)); },
     {.tooltip = PathText}},
    {WithFooter(WithTooltip(Basic(NumberColumn("size", text::kSizeMegabytes, L"%.2f")), text::kSizeTooltip),
                FooterKind::Sum),
     Size},
    {{.name = "modified",
      .caption = text::kPhotoFileModified,
      .width = 300,
      .kind = CellKind::DateTime,
      .maximumWidth = 300},
     Modified},
    {WithSpare(Basic(TextColumn("summary", text::kSummary, 300))),
     Summary,
     {.tooltip = FindingsText, .colour = SummaryColour}},
    {TextColumn("imageUniqueId", text::kPhotoImageId), Of<&Data::imageUniqueId>},
    {TextColumn("platformId", text::kPhotoPlatformId), Of<&Data::platformId>},
    {Basic(NumberColumn("longitude", text::kPhotoLongitude, kValue)), Of<&Data::gpsLongitude>},
    {Basic(NumberColumn("latitude", text::kPhotoLatitude, kValue)), Of<&Data::gpsLatitude>},
    {Basic(NumberColumn("altitude", text::kPhotoAltitude, kValue)), Of<&Data::gpsAltitude>},
    {Basic(NumberColumn("yaw", text::kPhotoYaw, kValue)), Of<&Data::cameraYaw>},
    {Basic(NumberColumn("pitch", text::kPhotoPitch, kValue)), Of<&Data::cameraPitch>},
    {Basic(NumberColumn("roll", text::kPhotoRoll, kValue)), Of<&Data::cameraRoll>},
    {NumberColumn("xyAccuracy", text::kPhotoXyAccuracy, kValue), Of<&Data::cameraGpsXyAccuracy>},
    {NumberColumn("zAccuracy", text::kPhotoZAccuracy, kValue), Of<&Data::cameraGpsZAccuracy>},
    {NumberColumn("rollPitchAccuracy", text::kPhotoRollPitchAccuracy, kValue),
     Of<&Data::cameraRollPitchAccuracy>},
    {NumberColumn("yawAccuracy", text::kPhotoYawAccuracy, kValue), Of<&Data::cameraYawAccuracy>},
    {NumberColumn("adjustedGpsSeconds", text::kPhotoAdjustedGpsSeconds, kValue), Of<&Data::cameraAdjGpsSec>},
    {TextColumn("calibrated", text::kPhotoCalibrated), Calibrated},
    {NumberColumn("imageHeight", text::kPhotoImageHeight, kCount), Of<&Data::imageHeight>},
    {NumberColumn("imageWidth", text::kPhotoImageWidth, kCount), Of<&Data::imageWidth>},
    {NumberColumn("focalLength", text::kPhotoFocalLength, kValue), Of<&Data::calibratedFocalLength>},
    {NumberColumn("principalPointX", text::kPhotoPrincipalPointCx, kValue), Of<&Data::calibratedCx>},
    {NumberColumn("principalPointY", text::kPhotoPrincipalPointCy, kValue), Of<&Data::calibratedCy>},
    {NumberColumn("radialDistortionK1", text::kPhotoRadialDistortionK1, kValue), Of<&Data::calibratedK1>},
    {NumberColumn("radialDistortionK2", text::kPhotoRadialDistortionK2, kValue), Of<&Data::calibratedK2>},
    {NumberColumn("radialDistortionK3", text::kPhotoRadialDistortionK3, kValue), Of<&Data::calibratedK3>},
    {NumberColumn("tangentialDistortionP1", text::kPhotoTangentialDistortionP1, kValue),
     Of<&Data::calibratedP1>},
    {NumberColumn("tangentialDistortionP2", text::kPhotoTangentialDistortionP2, kValue),
     Of<&Data::calibratedP2>},
    {TextColumn("calibrationDate", text::kPhotoCalibrationDate), Of<&Data::calibratedDate>},
    {TextColumn("cameraModel", text::kPhotoCameraModel), OfImage<&PhotoImage::cameraModel>},
    {TextColumn("fileType", text::kFileType), OfImage<&PhotoImage::fileType>},
    {Basic(TextColumn("imageSize", text::kImageSize)), ImageSize},
    {NumberColumn("width", text::kWidthPixels, kCount), OfImage<&PhotoImage::width>},
    {NumberColumn("height", text::kHeightPixels, kCount), OfImage<&PhotoImage::height>},
    {WithTooltip(NumberColumn("bands", text::kBandCount, kCount), text::kBandCountTooltip),
     OfImage<&PhotoImage::bands>},
    {WithTooltip(NumberColumn("bitsPerBand", text::kBitsPerBand, kCount), text::kBitsPerBandTooltip),
     OfImage<&PhotoImage::bitsPerBand>},
    {WithTooltip(TextColumn("colorModel", text::kColorModel), text::kColorModelTooltip),
     OfImage<&PhotoImage::colorModel>},
    {WithTooltip(TextColumn("photometric", text::kPhotometricInterpretation),
                 text::kPhotometricInterpretation),
     OfImage<&PhotoImage::photometric>},
    {WithTooltip(CalledCrs(TextColumn("projectionCode", text::kProjectionCode, 300)),
                 text::kProjectionCodeTooltip),
     ProjectionCode},
    {WithTooltip(NumberColumn("overviews", text::kOverviews, kCount), text::kOverviewsTooltip), Overviews},
    {WithTooltip(NumberColumn("pixelSize", text::kPixelSize, L"%.3f"), text::kPixelSizeTooltip),
     OfImage<&PhotoImage::pixelWidth>,
     {.format = PixelSizeFormat}},
    {WithTooltip(TextColumn("pixelSizes", text::kPixelSizeXy), text::kPixelSizeXyTooltip), PixelSizes},
    {WithTooltip(NumberColumn("minimumX", text::kMinX, L"%.2f"), text::kMinXTooltip),
     Position<&Data::gpsLongitude>},
    {WithTooltip(NumberColumn("maximumX", text::kMaxX, L"%.2f"), text::kMaxXTooltip),
     Position<&Data::gpsLongitude>},
    {WithTooltip(NumberColumn("minimumY", text::kMinY, L"%.2f"), text::kMinYTooltip),
     Position<&Data::gpsLatitude>},
    {WithTooltip(NumberColumn("maximumY", text::kMaxY, L"%.2f"), text::kMaxYTooltip),
     Position<&Data::gpsLatitude>},
    {Basic(CalledCrs(TextColumn("crsName", text::kCrsName))), OfCrs<&CrsDescription::name>},
    {TextColumn("linearUnit", text::kLinearUnit), LinearUnit},
    {TextColumn("angularUnit", text::kAngularUnit), OfCrs<&CrsDescription::angularUnits>},
    {TextColumn("wkt", text::kCrsWkt), OfCrs<&CrsDescription::prettyWkt>},
};
static_assert(std::size(kColumns) == 56);

}  // namespace

std::span<const Column<PhotoRow>> PhotoColumns() {
    return kColumns;
}

}  // namespace orvex
