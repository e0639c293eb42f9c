#include "raster/RasterColumns.h"

#include <array>
#include <bit>
#include <cmath>
#include <optional>

#include "support/DataKinds.h"
#include "support/Format.h"

namespace orvex {
namespace {

/// A cell of a file that could be described; empty for any other.
template <auto Function>
GridCell OfFile(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(row)) : GridCell();
}

template <auto Function>
GridCell OfProperties(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(row.Properties())) : GridCell();
}

template <auto Function>
GridCell OfCrs(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(*row.crs)) : GridCell();
}

template <auto Member>
GridCell CountOf(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(static_cast<double>(row.Properties().*Member)) : GridCell();
}

template <std::size_t Edge>
GridCell ExtentOf(const RasterRow& row) {
    if (!row.IsDescribed() || !row.Properties().extent.has_value()) {
        return {};
    }
    const double edge = (*row.Properties().extent)[Edge];
    return std::isfinite(edge) ? GridCell(edge) : GridCell();
}

GridCell Flag(const RasterRow& row) {
    return LoadFlagNumber(LoadFlagOf(row));
}

GridCell Address(const RasterRow& row) {
    return std::to_wstring(std::bit_cast<std::uintptr_t>(row.file.get()));
}

GridCell Size(const RasterRow& row) {
    const std::uint64_t bytes = row.fileSize;
    return bytes == 0 ? GridCell() : GridCell(static_cast<double>(bytes) * 1e-6);
}

GridCell Modified(const RasterRow& row) {
    const std::int64_t time = row.modifiedMs;
    return time == 0 ? GridCell() : GridCell(UtcTimeText(time));
}

std::wstring FileType(const RasterRow& row) {
    if (!row.Properties().format.empty()) {
        return row.Properties().format;
    }
    const std::wstring extension = UpperExtensionOf(row.path);
    return extension.empty() ? extension : extension.substr(1);
}

std::wstring BigTiff(const RasterRow& row) {
    return row.file->bigTiff ? L"True" : L"False";
}

std::wstring ImageSize(const RasterProperties& properties) {
    return FormatText(L"%d x %d", {properties.width, properties.height});
}

std::wstring ColorModel(const RasterProperties& properties) {
    constexpr std::array kNames{text::kColorBlackAndWhite, text::kColorGrayscale, text::kColorRgb};
    const auto code = static_cast<std::size_t>(properties.colorModel);
    return Text(code < kNames.size() ? kNames[code] : text::kUnknown);
}

std::wstring Photometric(const RasterProperties& properties) {
    constexpr std::array kNames{text::kPhotometricWhiteIsZero, text::kPhotometricBlackIsZero, text::kColorRgb,
                                text::kPhotometricPalette, text::kPhotometricTransparencyMask};
    const auto kind = static_cast<std::size_t>(properties.rasterKind);
    return Text(kind < kNames.size() ? kNames[kind] : text::kUnknown);
}

std::wstring ProjectionCode(const RasterProperties& properties) {
    constexpr std::int32_t kUserDefined = 32767;
    const std::int32_t code = properties.projectionCode;
    return code >= 1 && code != kUserDefined ? Text(text::kEpsgPrefix) + std::to_wstring(code)
                                             : Text(text::kProjectionCodeNone);
}

bool IsGeoreferenced(const RasterProperties& properties) {
    return properties.pixelWidth > 0 && properties.pixelHeight > 0 && std::isfinite(properties.pixelWidth) &&
           std::isfinite(properties.pixelHeight);
}

GridCell PixelSize(const RasterProperties& properties) {
    return IsGeoreferenced(properties) ? GridCell(properties.pixelWidth) : GridCell();
}

std::wstring PixelSizes(const RasterProperties& properties) {
    return IsGeoreferenced(properties)
               ? FormatText(L"%.8lf x %.8lf", {properties.pixelWidth, properties.pixelHeight})
               : std::wstring();
}

std::wstring ShownName(const RasterRow& row) {
    return FileNameOf(IsNamedByFolder(row.path) ? FolderOf(row.path) : row.path);
}

std::wstring PathText(const RasterRow& row) {
    return row.path;
}

/// Degrees need more digits than metres.
const wchar_t* CoordinateFormat(const RasterRow& row) {
    return row.crs->isGeographic ? L"%.8lf" : nullptr;
}

constexpr const wchar_t* kCount = L"%.0f";
constexpr const wchar_t* kCoordinate = L"%.3f";
constexpr auto kRight = HeaderAlign::Right;

constexpr GridColumn TextColumn(const char* name, StringId caption, int width) {
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

constexpr GridColumn CalledCrs(GridColumn column) {
    column.alsoKnownAs = "crs";
    return column;
}

constexpr GridColumn WithSpare(GridColumn column) {
    column.takesSpare = true;
    return column;
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

constexpr GridColumn Frozen(GridColumn column) {
    column.frozen = true;
    return column;
}

constexpr GridColumn Hidden(GridColumn column) {
    column.hidden = true;
    return column;
}

/// A column of both pages, or of one of them.
struct PageColumn {
    Column<RasterRow> column;
    std::optional<RasterUse> use = std::nullopt;
};

constexpr PageColumn kColumns[] = {
    {{{.name = "loadFlag",
       .width = 20,
       .kind = CellKind::Flag,
       .tooltip = text::kStatusIconTooltip,
       .basic = true,
       .frozen = true,
       .resizable = false},
      Flag,
      {.tooltip = FindingsText,
       .icon = [](const RasterRow& row) { return LoadFlagImage(LoadFlagOf(row)); },
       .words = [](const RasterRow& row) { return LoadFlagText(LoadFlagOf(row)); }}}},
    {{Hidden(TextColumn("path", text::kPath, 200)), [](const RasterRow& row) { return GridCell(row.path); }}},
    {{Hidden(TextColumn("details", text::kRasterDetailsColumn, 200)), Address}},
    {{WithFooter(Frozen(Basic(TextColumn("fileName", text::kFileName, 200))), FooterKind::Count),
      [](const RasterRow& row) { return GridCell(ShownName(row)); },
      {.tooltip = PathText}}},
    {{TextColumn("folder", text::kFolder, 300),
      [](const RasterRow& row) { return GridCell(FolderOf(row.path)); },
      {.tooltip = PathText}}},
    {{WithFooter(WithTooltip(Basic(NumberColumn("size", text::kSizeMegabytes, L"%.2f")), text::kSizeTooltip),
                 FooterKind::Sum),
      Size}},
    {{WithTooltip(TextColumn("modified", text::kModified, 300), text::kModifiedUtcTooltip), Modified}},
    {{WithTooltip(Basic(TextColumn("layer", text::kLayerName, 200)), text::kLayerTooltip),
      [](const RasterRow& row) { return GridCell(row.place.layer); }}},
    {{WithSpare(Basic(TextColumn("summary", text::kSummary, 300))),
      [](const RasterRow& row) { return GridCell(StateText(row)); },
      {.tooltip = FindingsText}}},
    {{TextColumn("fileType", text::kFileType, 200), OfFile<FileType>}},
    {{WithTooltip(TextColumn("bigTiff", text::kBigTiff, 200), text::kBigTiffTooltip), OfFile<BigTiff>},
     RasterUse::Image},
    {{Basic(TextColumn("imageSize", text::kImageSize, 200)), OfProperties<ImageSize>}},
    {{NumberColumn("width", text::kWidthPixels, kCount), CountOf<&RasterProperties::width>}},
    {{NumberColumn("height", text::kHeightPixels, kCount), CountOf<&RasterProperties::height>}},
    {{WithTooltip(NumberColumn("bands", text::kBandCount, kCount), text::kBandCountTooltip),
      CountOf<&RasterProperties::bands>}},
    {{WithTooltip(NumberColumn("bitsPerBand", text::kBitsPerBand, kCount), text::kBitsPerBandTooltip),
      CountOf<&RasterProperties::bitsPerBand>}},
    {{WithTooltip(TextColumn("colorModel", text::kColorModel, 200), text::kColorModelTooltip),
      OfProperties<ColorModel>}},
    {{TextColumn("photometric", text::kPhotometricInterpretation, 200), OfProperties<Photometric>}},
    {{WithTooltip(CalledCrs(TextColumn("projectionCode", text::kProjectionCode, 300)),
                  text::kProjectionCodeTooltip),
      OfProperties<ProjectionCode>}},
    {{WithTooltip(NumberColumn("overviews", text::kOverviews, kCount), text::kOverviewsTooltip),
      CountOf<&RasterProperties::overviews>}},
    {{WithTooltip(Basic(NumberColumn("pixelSize", text::kPixelSize, L"%.8lf")), text::kPixelSizeTooltip),
      OfProperties<PixelSize>}},
    {{WithTooltip(TextColumn("pixelSizes", text::kPixelSizeXy, 200), text::kPixelSizeXyTooltip),
      OfProperties<PixelSizes>}},
    {{WithTooltip(NumberColumn("minimumX", text::kMinX, kCoordinate), text::kMinXTooltip),
      ExtentOf<0>,
      {.format = CoordinateFormat}}},
    {{WithTooltip(NumberColumn("maximumX", text::kMaxX, kCoordinate), text::kMaxXTooltip),
      ExtentOf<2>,
      {.format = CoordinateFormat}}},
    {{WithTooltip(NumberColumn("minimumY", text::kMinY, kCoordinate), text::kMinYTooltip),
      ExtentOf<1>,
      {.format = CoordinateFormat}}},
    {{WithTooltip(NumberColumn("maximumY", text::kMaxY, kCoordinate), text::kMaxYTooltip),
      ExtentOf<3>,
      {.format = CoordinateFormat}}},
    {{Basic(CalledCrs(TextColumn("crsName", text::kCrsName, 200))),
      OfCrs<[](const CrsDescription& crs) { return crs.name; }>}},
    {{Basic(TextColumn("linearUnit", text::kLinearUnit, 200)),
      OfFile<[](const RasterRow& row) { return row.unit; }>}},
    {{TextColumn("angularUnit", text::kAngularUnit, 200),
      OfCrs<[](const CrsDescription& crs) { return crs.angularUnits; }>}},
    {{TextColumn("wkt", text::kCrsWkt, 200), OfCrs<[](const CrsDescription& crs) { return crs.prettyWkt; }>}},
    {{TextColumn("gpsTime", text::kGpsTimeType, 200),
      OfProperties<[](const RasterProperties&) { return Text(text::kNoGpsTime); }>},
     RasterUse::Image},
    // The converted points are written with standard GPS times.
    {{TextColumn("gpsTime", text::kGpsTimeType, 200),
      OfProperties<[](const RasterProperties&) { return std::wstring(L"Standard GPS Time"); }>},
     RasterUse::Dem},
};

std::vector<Column<RasterRow>> ColumnsFor(RasterUse use) {
    std::vector<Column<RasterRow>> columns;
    for (const PageColumn& entry : kColumns) {
        if (!entry.use.has_value() || *entry.use == use) {
            columns.push_back(entry.column);
        }
    }
    return columns;
}

}  // namespace

std::span<const Column<RasterRow>> RasterColumns(RasterUse use) {
    static const std::vector<Column<RasterRow>> image = ColumnsFor(RasterUse::Image);
    static const std::vector<Column<RasterRow>> dem = ColumnsFor(RasterUse::Dem);
    return use == RasterUse::Dem ? dem : image;
}

}  // namespace orvex
