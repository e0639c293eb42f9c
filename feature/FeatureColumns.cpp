#include "feature/FeatureColumns.h"

#include <algorithm>
#include <cmath>

#include "support/ImageIndex.h"

namespace orvex {
namespace {

GridCell Flag(const FeatureRow& row) {
    return LoadFlagNumber(LoadFlagOf(row));
}

GridCell Size(const FeatureRow& row) {
    return row.fileSize == 0 ? GridCell() : GridCell(static_cast<double>(row.fileSize) * 1e-6);
}

GridCell Modified(const FeatureRow& row) {
    return row.modifiedMs == 0 ? GridCell() : GridCell(UtcTimeText(row.modifiedMs));
}

/// A cell of a file that could be read; empty for any other.
template <auto Function>
GridCell OfRead(const FeatureRow& row) {
    return row.isRead ? GridCell(Function(row)) : GridCell();
}

/// Layers of CAD and KML files get their names when they are imported. The key of a shapefile is the name of
/// its layer. A file that is not loaded has none.
GridCell Layer(const FeatureRow& row) {
    if (!row.loadable) {
        return std::wstring();
    }
    if (IsConverted(row.kind)) {
        return Text(text::kFeatureVarious);
    }
    return row.place.layer.empty() ? FeatureLayerName(row) : row.place.layer;
}

/// A word of the CRS; "Unknown" where nothing is known.
template <std::wstring CrsDescription::*Word>
std::wstring OfCrs(const FeatureRow& row) {
    const std::wstring& word = (*row.crs).*Word;
    return word.empty() ? Text(text::kUnknown) : word;
}

template <std::size_t Edge>
GridCell ExtentOf(const FeatureRow& row) {
    return row.isRead && row.extent && std::isfinite((*row.extent)[Edge]) ? GridCell((*row.extent)[Edge])
                                                                          : GridCell();
}

bool IsKml(const FeatureRow& row) {
    return row.kind == FeatureKind::Kml || row.kind == FeatureKind::Kmz;
}

/// The numbers of layers and features, then one line per layer with its number of features: of a KML file,
/// whose layers are not named anywhere else in its row.
std::wstring LayersTooltip(const FeatureRow& row) {
    constexpr std::size_t kMostLines = 50;  // what a screen holds
    if (!IsKml(row) || !row.isRead) {
        return {};
    }
    std::wstring text = row.summary + L"\n";
    for (std::size_t i = 0; i < std::min(row.layers.size(), kMostLines); ++i) {
        text += FormatText(L"%s (%u)\n", {row.layers[i].name, row.layers[i].count});
    }
    return row.layers.size() <= kMostLines
               ? text
               : text + FormatText(Text(text::kMoreItems), {row.layers.size() - kMostLines}) + L"\n";
}

std::wstring Attributes(const FeatureRow& row) {
    std::wstring text;
    for (const FeatureField& field : row.fields) {
        text += FormatText(L"%s (%s),\n", {field.name, field.type});
    }
    return text;
}

std::wstring Findings(const FeatureRow& row) {
    return StateLines(row);
}

std::wstring SummaryTooltip(const FeatureRow& row) {
    const std::wstring layers = LayersTooltip(row);
    return layers.empty() ? StateLines(row) : layers + StateLines(row);
}

std::wstring PathText(const FeatureRow& row) {
    return row.path;
}

/// Degrees need more digits than metres.
const wchar_t* CoordinateFormat(const FeatureRow& row) {
    return row.crs->isGeographic ? L"%.8lf" : nullptr;
}

constexpr const wchar_t* kCount = L"%.0f";
constexpr const wchar_t* kTwoDecimals = L"%.2f";

constexpr GridColumn TextColumn(const char* name, StringId caption, int width) {
    return {.name = name, .caption = caption, .width = width};
}

constexpr GridColumn NumberColumn(const char* name, StringId caption, const wchar_t* format) {
    return {.name = name,
            .caption = caption,
            .width = 200,
            .kind = CellKind::Number,
            .format = format,
            .align = HeaderAlign::Right};
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

constexpr GridColumn FlagColumn() {
    return {.name = "loadFlag",
            .width = 20,
            .kind = CellKind::Flag,
            .tooltip = text::kStatusIconTooltip,
            .basic = true,
            .frozen = true,
            .resizable = false,
            .headerIcon = kImageLoadable};
}

constexpr GridColumn PathColumn() {
    GridColumn column = TextColumn("path", text::kPath, 200);
    column.hidden = true;
    return column;
}

constexpr GridColumn FileNameColumn() {
    GridColumn column = WithFooter(Basic(TextColumn("fileName", text::kFileName, 200)), FooterKind::Count);
    column.frozen = true;
    return column;
}

constexpr GridColumn ModifiedColumn() {
    GridColumn column = WithTooltip(TextColumn("modified", text::kModified, 150), text::kModifiedUtcTooltip);
    column.minimumWidth = 150;
    return column;
}

constexpr GridColumn SummaryColumn() {
    GridColumn column = Basic(TextColumn("summary", text::kSummary, 300));
    column.maximumWidth = 1000;
    column.takesSpare = true;
    return column;
}

constexpr GridColumn CrsNameColumn() {
    GridColumn column = Basic(TextColumn("crsName", text::kCrsName, 200));
    column.alsoKnownAs = "crs";
    return column;
}

constexpr Column<FeatureRow> kColumns[] = {
    {FlagColumn(),
     Flag,
     {.tooltip = Findings,
      .icon = [](const FeatureRow& row) { return LoadFlagImage(LoadFlagOf(row)); },
      .words = [](const FeatureRow& row) { return LoadFlagText(LoadFlagOf(row)); }}},
    {PathColumn(), [](const FeatureRow& row) { return GridCell(row.path); }},
    {FileNameColumn(),
     [](const FeatureRow& row) { return GridCell(FileNameOf(row.path)); },
     {.tooltip = PathText}},
    {TextColumn("folder", text::kFolder, 300),
     [](const FeatureRow& row) { return GridCell(FolderOf(row.path)); },
     {.tooltip = PathText}},
    {WithFooter(
         WithTooltip(Basic(NumberColumn("size", text::kSizeMegabytes, kTwoDecimals)), text::kSizeTooltip),
         FooterKind::Sum),
     Size},
    {ModifiedColumn(), Modified},
    {TextColumn("fileType", text::kFileType, 200),
     [](const FeatureRow& row) { return GridCell(FeatureKindName(row.kind)); }},
    {WithFooter(Basic(NumberColumn("features", text::kFeatureCount, kCount)), FooterKind::Sum),
     OfRead<[](const FeatureRow& row) { return static_cast<double>(row.featureCount); }>,
     {.tooltip = LayersTooltip}},
    {Basic(TextColumn("geometry", text::kFeatureGeometry, 200)),
     [](const FeatureRow& row) { return GridCell(row.geometry); }},
    {Basic(TextColumn("layer", text::kLayerName, 200)), Layer},
    {SummaryColumn(),
     [](const FeatureRow& row) { return GridCell(StateText(row)); },
     {.tooltip = SummaryTooltip}},
    {CrsNameColumn(), OfRead<OfCrs<&CrsDescription::name>>},
    {TextColumn("wkt", text::kCrsWkt, 200), OfRead<[](const FeatureRow& row) { return row.crs->prettyWkt; }>},
    {TextColumn("linearUnit", text::kLinearUnit, 200), OfRead<OfCrs<&CrsDescription::linearUnits>>},
    {TextColumn("angularUnit", text::kAngularUnit, 200), OfRead<OfCrs<&CrsDescription::angularUnits>>},
    {WithTooltip(NumberColumn("minimumX", text::kMinX, kTwoDecimals), text::kMinXTooltip),
     ExtentOf<0>,
     {.format = CoordinateFormat}},
    {WithTooltip(NumberColumn("maximumX", text::kMaxX, kTwoDecimals), text::kMaxXTooltip),
     ExtentOf<2>,
     {.format = CoordinateFormat}},
    {WithTooltip(NumberColumn("minimumY", text::kMinY, kTwoDecimals), text::kMinYTooltip),
     ExtentOf<1>,
     {.format = CoordinateFormat}},
    {WithTooltip(NumberColumn("maximumY", text::kMaxY, kTwoDecimals), text::kMaxYTooltip),
     ExtentOf<3>,
     {.format = CoordinateFormat}},
    {NumberColumn("fieldCount", text::kFeatureFieldCount, kCount),
     OfRead<[](const FeatureRow& row) { return static_cast<double>(row.fieldCount); }>},
    {TextColumn("fields", text::kFeatureAttributes, 200),
     [](const FeatureRow& row) { return GridCell(Attributes(row)); }},
};

}  // namespace

std::span<const Column<FeatureRow>> FeatureColumns() {
    return kColumns;
}

}  // namespace orvex
