#include "las/page/LasDetailsView.h"

#include <vector>

#include "dialog/details/DetailsHtml.h"
#include "las/page/LasDetails.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {

namespace {

QString OverviewHtml(const LasRow& row, const QString& captionColour) {
    const LasInspection& inspection = row.inspection;
    const std::vector<Finding> findings(inspection.findings.begin(), inspection.findings.end());
    const std::wstring failure = inspection.file == nullptr ? inspection.summary : std::wstring();
    return FindingsHtml(findings, failure, Text(text::kLasDetailsConsistent)) +
           SectionsHtml(LasOverview(row), captionColour);
}

QString CrsHtml(const LasRow& row, const QString& captionColour) {
    const std::vector<DetailField> fields = LasCrsFields(row);
    return fields.empty()
               ? TextHtml(Text(text::kDetailsNoCrs))
               : FieldsHtml(fields, captionColour) + PreformattedHtml(row.inspection.crs->prettyWkt);
}

}  // namespace

DetailsContent LasDetailsContent(std::span<const LasRow> rows, std::span<const std::size_t> records,
                                 const QString& captionColour) {
    if (records.size() == 1) {
        const LasRow& row = rows[records.front()];
        return {
            row.inspection.path,
            {OverviewHtml(row, captionColour), CrsHtml(row, captionColour), ToQString(LasRecordsText(row))}};
    }
    const LasTotals totals = TotalsOf(rows, records);
    const DetailSection section = TotalsSection(totals);
    return {FormatText(Text(text::kDetailsFilesSelected), {totals.files}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
