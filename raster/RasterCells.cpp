#include "raster/RasterCells.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

namespace {

using CellFunction = GridCell (*)(const RasterRow&);

/// A cell of a file that could be described; empty for any other.
template <auto Function>
GridCell OfFile(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(row.File())) : GridCell();
}

template <auto Function>
GridCell OfProperties(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(row.File().properties)) : GridCell();
}

template <auto Function>
GridCell OfCrs(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(Function(*row.File().crs)) : GridCell();
}

template <auto Member>
GridCell CountOf(const RasterRow& row) {
    return row.IsDescribed() ? GridCell(static_cast<double>(row.File().properties.*Member)) : GridCell();
}

template <std::size_t Edge>
GridCell ExtentOf(const RasterRow& row) {
    const auto& extent = row.File().properties.extent;
    const bool isKnown = row.IsDescribed() && extent.has_value() && std::isfinite((*extent)[Edge]);
    return isKnown ? GridCell((*extent)[Edge]) : GridCell();
}

GridCell Flag(const RasterRow& row) {
    // 0 for a file that cannot be loaded, so that it reads as a flag.
    return static_cast<double>(LoadFlag::NotLoadable) - static_cast<double>(LoadFlagOf(row));
}

GridCell Details(const RasterRow& row) {
    return std::to_wstring(std::bit_cast<std::uintptr_t>(row.inspection.details.get()));
}

GridCell Size(const RasterRow& row) {
    const std::uint64_t bytes = row.File().fileSize;
    return bytes == 0 ? GridCell() : GridCell(static_cast<double>(bytes) * 1e-6);
}

GridCell Modified(const RasterRow& row) {
    const std::int64_t time = row.File().modifiedMs;
    return time == 0 ? GridCell() : GridCell(UtcTimeText(time));
}

std::wstring FileType(const RasterInspection& file) {
    if (!file.properties.format.empty()) {
        return file.properties.format;
    }
    const std::wstring extension = UpperExtensionOf(file.path);
    return extension.empty() ? extension : extension.substr(1);
}

std::wstring BigTiff(const RasterInspection& file) {
    return file.bigTiff ? L"True" : L"False";
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

/// In the order of RasterColumn; the last one is that of the page.
constexpr std::array<CellFunction, kRasterColumnCount - 1> kCells{
    Flag,
    [](const RasterRow& row) { return GridCell(row.File().path); },
    Details,
    [](const RasterRow& row) { return GridCell(FileNameOf(row.File().path)); },
    [](const RasterRow& row) { return GridCell(FolderOf(row.File().path)); },
    Size,
    Modified,
    [](const RasterRow& row) { return GridCell(row.place.layer); },
    [](const RasterRow& row) { return GridCell(row.inspection.summary); },
    OfFile<FileType>,
    OfFile<BigTiff>,
    OfProperties<ImageSize>,
    CountOf<&RasterProperties::width>,
    CountOf<&RasterProperties::height>,
    CountOf<&RasterProperties::bands>,
    CountOf<&RasterProperties::bitsPerBand>,
    OfProperties<ColorModel>,
    OfProperties<Photometric>,
    OfProperties<ProjectionCode>,
    CountOf<&RasterProperties::overviews>,
    OfProperties<PixelSize>,
    OfProperties<PixelSizes>,
    ExtentOf<0>,
    ExtentOf<2>,
    ExtentOf<1>,
    ExtentOf<3>,
    OfCrs<[](const CrsDescription& crs) { return crs.name; }>,
    OfFile<[](const RasterInspection& file) { return file.unit; }>,
    OfCrs<[](const CrsDescription& crs) { return crs.angularUnits; }>,
    OfCrs<[](const CrsDescription& crs) { return crs.prettyWkt; }>,
};

/// The converted points of a DEM are written with standard GPS times; an image has none.
GridCell GpsTime(const RasterRow& row, RasterUse use) {
    if (!row.IsDescribed()) {
        return {};
    }
    return use == RasterUse::Dem ? std::wstring(L"Standard GPS Time") : Text(text::kNoGpsTime);
}

}  // namespace

GridCell RasterCell(const RasterRow& row, RasterColumn column, RasterUse use) {
    return column == RasterColumn::GpsTime ? GpsTime(row, use)
                                           : kCells[static_cast<std::size_t>(column)](row);
}

std::wstring RasterCellText(const RasterRow& row, RasterColumn column, RasterUse use) {
    const GridCell cell = RasterCell(row, column, use);
    if (const auto* text = std::get_if<std::wstring>(&cell)) {
        return *text;
    }
    const auto* number = std::get_if<double>(&cell);
    if (number == nullptr) {
        return {};
    }
    const wchar_t* format = RasterNumberFormat(row, column);
    const auto& columns = RasterColumns(RasterUse::Image);
    return FormatText(format != nullptr ? format : columns[static_cast<std::size_t>(column)].format,
                      {*number});
}

const wchar_t* RasterNumberFormat(const RasterRow& row, RasterColumn column) {
    const bool isCoordinate = column >= RasterColumn::MinimumX && column <= RasterColumn::MaximumY;
    return isCoordinate && row.File().crs->isGeographic ? L"%.8lf" : nullptr;
}

}  // namespace orvex
