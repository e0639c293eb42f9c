#include "raster/RasterColumns.h"

#include <algorithm>
#include <array>

namespace orvex {

namespace {

constexpr const wchar_t* kCount = L"%.0f";
constexpr const wchar_t* kCoordinate = L"%.3f";
constexpr auto kRight = HeaderAlign::Right;

constexpr GridColumn TextColumn(const char* name, StringId caption, int width) {
    return {.name = name, .caption = caption, .width = width};
}

constexpr GridColumn NumberColumn(const char* name, StringId caption, const wchar_t* format) {
    return {.name = name,
            .caption = caption,
            .width = 200,
            .kind = CellKind::Number,
            .format = format,
            .align = kRight};
}

constexpr GridColumn Basic(GridColumn column) {
    column.basic = true;
    return column;
}

constexpr GridColumn Told(GridColumn column, StringId tooltip) {
    column.tooltip = tooltip;
    return column;
}

constexpr GridColumn Footed(GridColumn column, FooterKind footer) {
    column.footer = footer;
    return column;
}

constexpr GridColumn Frozen(GridColumn column) {
    column.frozen = true;
    return column;
}

constexpr GridColumn Hidden(GridColumn column) {
    column.hidden = true;
    return column;
}

constexpr std::array<GridColumn, kRasterColumnCount> kColumns{{
    {.name = "loadFlag",
     .width = 20,
     .kind = CellKind::Flag,
     .tooltip = text::kStatusIconTooltip,
     .basic = true,
     .frozen = true,
     .resizable = false},
    Hidden(TextColumn("path", text::kPath, 200)),
    Hidden(TextColumn("details", text::kRasterDetailsColumn, 200)),
    Footed(Frozen(Basic(TextColumn("fileName", text::kFileName, 200))), FooterKind::Count),
    TextColumn("folder", text::kFolder, 300),
    Footed(Told(Basic(NumberColumn("size", text::kSizeMegabytes, L"%.2f")), text::kSizeTooltip),
           FooterKind::Sum),
    Told(TextColumn("modified", text::kModified, 300), text::kModifiedUtcTooltip),
    Told(Basic(TextColumn("layer", text::kLayerName, 200)), text::kLayerTooltip),
    Basic(TextColumn("summary", text::kSummary, 300)),
    TextColumn("fileType", text::kFileType, 200),
    Told(TextColumn("bigTiff", text::kBigTiff, 200), text::kBigTiffTooltip),
    Basic(TextColumn("imageSize", text::kImageSize, 200)),
    NumberColumn("width", text::kWidthPixels, kCount),
    NumberColumn("height", text::kHeightPixels, kCount),
    Told(NumberColumn("bands", text::kBandCount, kCount), text::kBandCountTooltip),
    Told(NumberColumn("bitsPerBand", text::kBitsPerBand, kCount), text::kBitsPerBandTooltip),
    Told(TextColumn("colorModel", text::kColorModel, 200), text::kColorModelTooltip),
    TextColumn("photometric", text::kPhotometricInterpretation, 200),
    Told(TextColumn("projectionCode", text::kProjectionCode, 300), text::kProjectionCodeTooltip),
    Told(NumberColumn("overviews", text::kOverviews, kCount), text::kOverviewsTooltip),
    Told(Basic(NumberColumn("pixelSize", text::kPixelSize, L"%.8lf")), text::kPixelSizeTooltip),
    Told(TextColumn("pixelSizes", text::kPixelSizeXy, 200), text::kPixelSizeXyTooltip),
    Told(NumberColumn("minimumX", text::kMinX, kCoordinate), text::kMinXTooltip),
    Told(NumberColumn("maximumX", text::kMaxX, kCoordinate), text::kMaxXTooltip),
    Told(NumberColumn("minimumY", text::kMinY, kCoordinate), text::kMinYTooltip),
    Told(NumberColumn("maximumY", text::kMaxY, kCoordinate), text::kMaxYTooltip),
    Basic(TextColumn("crsName", text::kCrsName, 200)),
    Basic(TextColumn("linearUnit", text::kLinearUnit, 200)),
    TextColumn("angularUnit", text::kAngularUnit, 200),
    TextColumn("wkt", text::kCrsWkt, 200),
    TextColumn("gpsTime", text::kGpsTimeType, 200),
}};

static_assert(IndexOf(RasterColumn::GpsTime) + 1 == kRasterColumnCount);

constexpr std::array<GridColumn, kDemColumnCount> WithoutBigTiff() {
    std::array<GridColumn, kDemColumnCount> columns{};
    constexpr auto kLeftOut = static_cast<std::ptrdiff_t>(RasterColumn::BigTiff);
    const auto rest = std::copy_n(kColumns.begin(), kLeftOut, columns.begin());
    std::copy(kColumns.begin() + kLeftOut + 1, kColumns.end(), rest);
    return columns;
}

constexpr std::array<GridColumn, kDemColumnCount> kDemColumns = WithoutBigTiff();

}  // namespace

std::span<const GridColumn> RasterColumns(RasterUse use) {
    return use == RasterUse::Dem ? std::span<const GridColumn>(kDemColumns) : kColumns;
}

RasterColumn RasterColumnAt(RasterUse use, int index) {
    const bool isBehind = use == RasterUse::Dem && index >= IndexOf(RasterColumn::BigTiff);
    return static_cast<RasterColumn>(isBehind ? index + 1 : index);
}

}  // namespace orvex
