#include "raster/page/RasterDetails.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>
#include <vector>

#include "dialog/details/DetailsHtml.h"
#include "raster/page/RasterBandTable.h"
#include "raster/page/RasterSections.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {
namespace {

/// Sums over several rows.
struct RasterTotals {
    std::size_t files = 0;
    std::size_t notReadable = 0;
    std::size_t withFindings = 0;
    std::uint64_t bytes = 0;       ///< of the files
    std::uint64_t totalBytes = 0;  ///< with their sidecars
    double pixels = 0;
    std::size_t layers = 0;
    std::vector<std::wstring> crsNames;  ///< of each group, in order of the rows; "" for files without a CRS
    bool isGeographic = false;
    /// Minimum X, minimum Y, maximum X, maximum Y over all files; none when their CRS differ or none has one.
    std::optional<std::array<double, 4>> extent;
};

/// Grows a box by another; one that is not finite says nothing.
void Unite(std::optional<std::array<double, 4>>& box, const std::optional<std::array<double, 4>>& other) {
    if (!other.has_value() || !std::ranges::all_of(*other, [](double edge) { return std::isfinite(edge); })) {
        return;
    }
    if (!box.has_value()) {
        box = other;
        return;
    }
    for (std::size_t edge = 0; edge < 2; ++edge) {
        (*box)[edge] = std::min((*box)[edge], (*other)[edge]);
        (*box)[edge + 2] = std::max((*box)[edge + 2], (*other)[edge + 2]);
    }
}

std::wstring Megabytes(std::uint64_t bytes) {
    return FormatText(L"%'.2f", {static_cast<double>(bytes) * 1e-6});
}

std::wstring Count(std::size_t number) {
    return number == 0 ? std::wstring() : GroupedNumber(number);
}

RasterTotals RasterTotalsOf(std::span<const RasterRow> rows, std::span<const std::size_t> records) {
    RasterTotals totals;
    std::set<std::wstring> layers;
    std::set<std::string> groups;  // different CRSs may have one name
    for (const std::size_t record : records) {
        const RasterRow& row = rows[record];
        ++totals.files;
        totals.bytes += row.fileSize;
        totals.totalBytes +=
            row.IsDescribed() ? std::max(row.fileSize, row.Properties().totalBytes) : row.fileSize;
        totals.withFindings += LoadFlagOf(row) == LoadFlag::Findings ? 1 : 0;
        if (!row.IsDescribed()) {
            ++totals.notReadable;
            continue;
        }
        totals.pixels += static_cast<double>(row.Properties().width) * row.Properties().height;
        layers.insert(row.place.layer);
        if (groups.insert(LayerKeyOf(*row.crs)).second) {
            totals.crsNames.push_back(row.crs->name);
        }
        totals.isGeographic = row.crs->isGeographic;
        Unite(totals.extent, row.Properties().extent);
    }
    totals.layers = layers.size();
    if (totals.crsNames.size() != 1) {
        totals.extent.reset();
    }
    return totals;
}

DetailSection RasterTotalsSection(const RasterTotals& totals) {
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsFiles, GroupedNumber(totals.files));
    AddField(fields, text::kSizeMegabytes, Megabytes(totals.bytes));
    if (totals.totalBytes > totals.bytes) {
        AddField(fields, text::kRasterTotalSizeMegabytes, Megabytes(totals.totalBytes));
    }
    AddField(fields, text::kRasterMegapixels, FormatText(L"%'.3f", {totals.pixels * 1e-6}));
    AddField(fields, text::kTotalsLayers, Count(totals.layers));
    AddField(fields, text::kTotalsFilesWithFindings, Count(totals.withFindings));
    AddField(fields, text::kTotalsUnreadableFiles, Count(totals.notReadable));
    for (const std::wstring& name : totals.crsNames) {
        AddField(fields, text::kTotalsCrs, name.empty() ? Text(text::kCellNone) : name);
    }
    if (totals.extent.has_value()) {
        constexpr std::array kCaptions{text::kMinX, text::kMinY, text::kMaxX, text::kMaxY};
        for (std::size_t edge = 0; edge < kCaptions.size(); ++edge) {
            AddField(fields, kCaptions[edge],
                     FormatText(totals.isGeographic ? L"%.8lf" : L"%.3f", {(*totals.extent)[edge]}));
        }
    }
    return section;
}

QString OverviewHtml(const RasterRow& row, RasterUse use, const QString& captionColour) {
    const std::wstring failure = row.IsDescribed() ? std::wstring() : row.summary;
    std::vector<Finding> findings = row.findings;
    if (row.place.inProject) {
        findings.push_back({FindingSeverity::Note, Text(text::kFileInProject)});
    }
    std::erase_if(findings,
                  [&](const Finding& finding) { return failure.find(finding.text) != std::wstring::npos; });
    return FindingsHtml(findings, failure, Text(text::kDetailsNothingOdd)) +
           SectionsHtml(RasterSections(row, use), captionColour);
}

QString CrsHtml(const RasterRow& row, const QString& captionColour) {
    const std::vector<DetailField> fields = RasterCrsFields(row);
    return fields.empty() ? TextHtml(Text(text::kDetailsNoCrs))
                          : FieldsHtml(fields, captionColour) + PreformattedHtml(row.crs->prettyWkt);
}

QString CellHtml(const std::wstring& text, const QString& style) {
    return QStringLiteral("<td style=\"padding-right:16px;white-space:pre%1\">%2</td>")
        .arg(style, ToQString(text).toHtmlEscaped());
}

QString BandsHtml(const RasterRow& row, const QString& captionColour) {
    if (!row.IsDescribed()) {
        return TextHtml(Text(text::kRasterNotDescribed));
    }
    const DetailTable table = BandTable(row.Properties());
    if (table.rows.empty()) {
        return TextHtml(Text(text::kRasterBandsUnknown));
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
    const std::size_t unlisted = UnlistedBands(row.Properties());
    return unlisted == 0 ? html : html + TextHtml(FormatText(Text(text::kMoreItems), {unlisted}));
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
    const RasterTotals totals = RasterTotalsOf(rows, records);
    const DetailSection section = RasterTotalsSection(totals);
    return {FormatText(Text(text::kDetailsFilesSelected), {totals.files}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
