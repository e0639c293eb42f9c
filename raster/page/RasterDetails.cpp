#include "raster/page/RasterDetails.h"

#include <algorithm>
#include <set>
#include <vector>

#include "dialog/details/FileDetails.h"
#include "raster/page/RasterBandTable.h"
#include "raster/page/RasterSections.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {
namespace {

std::wstring Megabytes(std::uint64_t bytes) {
    return FormatText(L"%'.2f", {static_cast<double>(bytes) * 1e-6});
}

DetailSection RasterTotalsSection(std::span<const RasterRow> rows, std::span<const std::size_t> records) {
    const FileTotals totals = TotalsOf(rows, records, [](const RasterRow& row) -> DetailExtent {
        return row.IsDescribed() ? row.Properties().extent : DetailExtent();
    });
    std::uint64_t totalBytes = 0;  // with sidecars
    double pixels = 0;
    std::set<std::wstring> layers;
    for (const std::size_t record : records) {
        const RasterRow& row = rows[record];
        totalBytes += row.IsDescribed() ? std::max(row.fileSize, row.Properties().totalBytes) : row.fileSize;
        if (row.IsDescribed()) {
            pixels += static_cast<double>(row.Properties().width) * row.Properties().height;
            layers.insert(row.place.layer);
        }
    }
    std::vector<DetailField> own;
    if (totalBytes > totals.bytes) {
        AddField(own, text::kRasterTotalSizeMegabytes, Megabytes(totalBytes));
    }
    AddField(own, text::kRasterMegapixels, FormatText(L"%'.3f", {pixels * 1e-6}));
    AddField(own, text::kTotalsLayers, layers.empty() ? std::wstring() : GroupedNumber(layers.size()));
    return TotalsSection(totals, std::move(own));
}

QString OverviewHtml(const RasterRow& row, RasterUse use, const QString& captionColour) {
    return FileFindingsHtml(row) + SectionsHtml(RasterSections(row, use), captionColour);
}

QString CrsHtml(const RasterRow& row, const QString& captionColour) {
    const std::vector<DetailField> fields = RasterCrsFields(row);
    return fields.empty() ? TextHtml(Text(text::kDetailsNoCrs))
                          : FieldsHtml(fields, captionColour) + PreformattedHtml(row.crs->prettyWkt);
}

QString BandsHtml(const RasterRow& row, const QString& captionColour) {
    if (!row.IsDescribed()) {
        return TextHtml(Text(text::kRasterNotDescribed));
    }
    const DetailTable table = BandTable(row.Properties());
    if (table.rows.empty()) {
        return TextHtml(Text(text::kRasterBandsUnknown));
    }
    return TableHtml(table, UnlistedBands(row.Properties()), captionColour);
}

}  // namespace

DetailsContent RasterDetailsContent(std::span<const RasterRow> rows, std::span<const std::size_t> records,
                                    RasterUse use, const QString& captionColour) {
    if (records.size() == 1) {
        const RasterRow& row = rows[records.front()];
        return {row.path,
                {OverviewHtml(row, use, captionColour), CrsHtml(row, captionColour),
                 BandsHtml(row, captionColour)}};
    }
    const DetailSection section = RasterTotalsSection(rows, records);
    return {FormatText(Text(text::kDetailsFilesSelected), {records.size()}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
