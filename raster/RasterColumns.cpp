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
     .tooltip = 13501_lsid,
     .basic = true,
     .frozen = true,
     .resizable = false},
    Hidden(TextColumn("path", 13502_lsid, 200)),
    Hidden(TextColumn("details", 13567_lsid, 200)),
    Footed(Frozen(Basic(TextColumn("fileName", 13503_lsid, 200))), FooterKind::Count),
    TextColumn("folder", 13504_lsid, 300),
    Footed(Told(Basic(NumberColumn("size", 13505_lsid, L"%.2f")), 13481_lsid), FooterKind::Sum),
    Told(TextColumn("modified", 13506_lsid, 300), 41282_lsid),
    Told(Basic(TextColumn("layer", 13507_lsid, 200)), 40599_lsid),
    Basic(TextColumn("summary", 13508_lsid, 300)),
    TextColumn("fileType", 13568_lsid, 200),
    Told(TextColumn("bigTiff", 3325_lsid, 200), 41283_lsid),
    Basic(TextColumn("imageSize", 13569_lsid, 200)),
    NumberColumn("width", 13570_lsid, kCount),
    NumberColumn("height", 13571_lsid, kCount),
    Told(NumberColumn("bands", 13572_lsid, kCount), 13584_lsid),
    Told(NumberColumn("bitsPerBand", 13573_lsid, kCount), 13585_lsid),
    Told(TextColumn("colorModel", 13574_lsid, 200), 13586_lsid),
    TextColumn("photometric", 13575_lsid, 200),
    Told(TextColumn("projectionCode", 13576_lsid, 300), 13587_lsid),
    Told(NumberColumn("overviews", 13577_lsid, kCount), 13588_lsid),
    Told(Basic(NumberColumn("pixelSize", 13645_lsid, L"%.8lf")), 13589_lsid),
    Told(TextColumn("pixelSizes", 13578_lsid, 200), 13590_lsid),
    Told(NumberColumn("minimumX", 13541_lsid, kCoordinate), 13591_lsid),
    Told(NumberColumn("maximumX", 13542_lsid, kCoordinate), 13592_lsid),
    Told(NumberColumn("minimumY", 13538_lsid, kCoordinate), 13593_lsid),
    Told(NumberColumn("maximumY", 13539_lsid, kCoordinate), 13594_lsid),
    Basic(TextColumn("crsName", 13509_lsid, 200)),
    Basic(TextColumn("linearUnit", 13579_lsid, 200)),
    TextColumn("angularUnit", 13580_lsid, 200),
    TextColumn("wkt", 13581_lsid, 200),
    TextColumn("gpsTime", 13513_lsid, 200),
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
