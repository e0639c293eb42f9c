#include "cloud/CloudColumns.h"

#include <algorithm>
#include <string_view>

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

std::wstring StateWithoutFindings(const CloudRow& row) {
    return Text(row.remote == nullptr ? text::kCloudNotInspected : text::kInspectionOk);
}

GridCell State(const CloudRow& row) {
    return row.summary.empty() ? StateWithoutFindings(row) : row.summary;
}

// Which rows have a name that is taken follows from the order of the list, so it takes no part in it.
GridCell StateOrder(const CloudRow& row) {
    const auto counts = [](const Finding& finding) {
        return std::string_view(finding.code) != cloud_finding::kDuplicateName.code;
    };
    const auto first = std::ranges::find_if(row.findings, counts);
    return first == row.findings.end() ? StateWithoutFindings(row) : first->text;
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
    {{StateColumn()}, State, {.tooltip = AllFindings, .order = StateOrder}},
};

}  // namespace

std::span<const Column<CloudRow>> CloudColumns() {
    return kColumns;
}

}  // namespace orvex
