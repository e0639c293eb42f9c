#include "raster/page/RasterDetailsView.h"

#include <vector>

#include "dialog/details/DetailsHtml.h"
#include "raster/page/RasterBandTable.h"
#include "raster/page/RasterDetails.h"
#include "raster/page/RasterTotals.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {

namespace {

QString OverviewHtml(const RasterRow& row, RasterUse use, const QString& captionColour) {
    const std::wstring failure = row.IsDescribed() ? std::wstring() : row.inspection.summary;
    std::vector<Finding> findings = row.File().findings;
    std::erase_if(findings,
                  [&](const Finding& finding) { return failure.find(finding.text) != std::wstring::npos; });
    return FindingsHtml(findings, failure, Text(text::kDetailsNothingOdd)) +
           SectionsHtml(RasterOverview(row, use), captionColour);
}

QString CrsHtml(const RasterRow& row, const QString& captionColour) {
    const std::vector<DetailField> fields = RasterCrsFields(row);
    return fields.empty() ? TextHtml(Text(text::kDetailsNoCrs))
                          : FieldsHtml(fields, captionColour) + PreformattedHtml(row.File().crs->prettyWkt);
}

QString CellHtml(const std::wstring& text, const QString& style) {
    return QStringLiteral("<td style=\"padding-right:16px;white-space:pre%1\">%2</td>")
        .arg(style, ToQString(text).toHtmlEscaped());
}

QString BandsHtml(const RasterRow& row, const QString& captionColour) {
    const DetailTable table = RasterBands(row);
    if (table.rows.empty()) {
        return TextHtml(Text(row.IsDescribed() ? text::kRasterBandsUnknown : text::kRasterNotDescribed));
    }
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\"><tr>");
    for (const StringId caption : table.captions) {
        html += CellHtml(Text(caption), QStringLiteral(";color:") + captionColour);
    }
    for (const std::vector<std::wstring>& cells : table.rows) {
        html += QStringLiteral("</tr><tr>");
        for (const std::wstring& cell : cells) {
            html += CellHtml(cell, {});
        }
    }
    html += QStringLiteral("</tr></table>");
    const std::size_t unlisted = UnlistedBands(row);
    return unlisted == 0 ? html : html + TextHtml(FormatText(Text(text::kMoreItems), {unlisted}));
}

}  // namespace

DetailsContent RasterDetailsContent(std::span<const RasterRow> rows, std::span<const std::size_t> records,
                                    RasterUse use, const QString& captionColour) {
    if (records.size() == 1) {
        const RasterRow& row = rows[records.front()];
        return {row.inspection.path,
                {OverviewHtml(row, use, captionColour), CrsHtml(row, captionColour),
                 BandsHtml(row, captionColour)}};
    }
    const RasterTotals totals = RasterTotalsOf(rows, records);
    const DetailSection section = RasterTotalsSection(totals);
    return {FormatText(Text(text::kDetailsFilesSelected), {totals.files}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
