#include "cloud/CloudColumns.h"

#include "cloud/CloudListing.h"
#include "support/ImageIndex.h"

namespace orvex {
namespace {

template <std::wstring CloudRow::*Member>
GridCell TextOf(const CloudRow& row) {
    return row.*Member;
}

GridCell Size(const CloudRow& row) {
    return row.sizeGib ? GridCell(*row.sizeGib) : GridCell();
}

GridCell Expires(const CloudRow& row) {
    return row.expiresMs ? GridCell(UtcTimeText(*row.expiresMs)) : GridCell();
}

GridCell State(const CloudRow& row) {
    if (!row.summary.empty()) {
        return row.summary;
    }
    return Text(row.remote == nullptr ? text::kCloudNotInspected : text::kInspectionOk);
}

std::wstring AllFindings(const CloudRow& row) {
    return FindingLines(row.findings);
}

// Beside the name, which never scrolls out of sight as the words do.
int StateIcon(const CloudRow& row) {
    return row.remote == nullptr && row.findings.empty() ? -1 : LoadFlagImage(LoadFlagOf(row));
}

// The URL: a tooltip of the name tells which file a layer is.
std::wstring ShownPath(const CloudRow& row) {
    return row.path;
}

constexpr GridColumn TextColumn(const char* name, StringId caption, int width,
                                HeaderAlign align = HeaderAlign::Left) {
    return {.name = name, .caption = caption, .width = width, .align = align, .basic = true};
}

constexpr GridColumn HiddenColumn(const char* name, StringId caption) {
    return {.name = name, .caption = caption, .width = 100, .hidden = true};
}

constexpr GridColumn NameColumn() {
    GridColumn column = TextColumn("name", text::kCloudLayerName, 200, HeaderAlign::Centre);
    column.frozen = true;
    column.footer = FooterKind::Count;
    column.footerFormat = text::kCloudLayersFooter;
    return column;
}

constexpr GridColumn SizeColumn() {
    GridColumn column = TextColumn("size", text::kCloudSizeGibibytes, 100, HeaderAlign::Right);
    column.kind = CellKind::Number;
    column.format = kGibibytesFormat;
    column.footer = FooterKind::Sum;
    return column;
}

constexpr GridColumn WithTooltip(GridColumn column, StringId tooltip) {
    column.tooltip = tooltip;
    return column;
}

constexpr GridColumn StateColumn() {
    GridColumn column = TextColumn("state", text::kCloudState, 200);
    column.takesSpare = true;
    return column;
}

constexpr Column<CloudRow> kColumns[] = {
    {{NameColumn()}, TextOf<&CloudRow::name>, {.tooltip = ShownPath, .icon = StateIcon}},
    {{WithTooltip(TextColumn("source", text::kCloudSource, 100), text::kCloudSourceTooltip)},
     TextOf<&CloudRow::kind>},
    {{SizeColumn()}, Size},
    {{TextColumn("storedSize", text::kCloudStoredSize, 200, HeaderAlign::Centre)},
     TextOf<&CloudRow::storedSize>},
    {{TextColumn("points", text::kCloudPoints, 100)}, TextOf<&CloudRow::points>},
    {{TextColumn("crs", text::kCloudCrs, 100)}, TextOf<&CloudRow::crsText>},
    {{TextColumn("modified", text::kCloudModified, 100)}, TextOf<&CloudRow::modified>},
    // Hidden columns can be searched and exported: the URL without its signature.
    {{HiddenColumn("url", text::kCloudUrl)}, TextOf<&CloudRow::path>},
    {{HiddenColumn("layerId", text::kCloudLayerId)}, TextOf<&CloudRow::value2>},
    {{HiddenColumn("projectId", text::kCloudProjectId)}, TextOf<&CloudRow::value3>},
    {{WithTooltip(TextColumn("expires", text::kCloudExpires, 130), text::kCloudExpiresTooltip)}, Expires},
    {{StateColumn()}, State, {.tooltip = AllFindings}},
};

}  // namespace

std::span<const Column<CloudRow>> CloudColumns() {
    return kColumns;
}

}  // namespace orvex
