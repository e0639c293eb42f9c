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
    return FindingsHtml(findings, failure, Text(40641_lsid)) + SectionsHtml(LasOverview(row), captionColour);
}

QString CrsHtml(const LasRow& row, const QString& captionColour) {
    const std::vector<DetailField> fields = LasCrsFields(row);
    return fields.empty()
               ? TextHtml(Text(40648_lsid))
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
    return {FormatText(Text(40635_lsid), {totals.files}), {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
