#include "feature/page/FeatureDetails.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "dialog/details/FileDetails.h"
#include "feature/FeatureColumns.h"
#include "support/Format.h"

namespace orvex {
namespace {

/// Rows of a table that are listed; drawings can have a hundred thousand layers.
constexpr std::size_t kMostListed = 1000;

std::wstring Count(std::size_t number) {
    return number == 0 ? std::wstring() : GroupedNumber(number);
}

DetailSection FileSection(const FeatureRow& row) {
    DetailSection section{text::kDetailsFile, {}};
    auto& fields = section.fields;
    AddCells(fields, FeatureColumns(), row, {"fileType", "size"});
    AddField(fields, text::kModifiedUtc, row.modifiedMs == 0 ? std::wstring() : UtcTimeText(row.modifiedMs));
    AddField(fields, text::kLayerName, row.place.layer);
    return section;
}

DetailSection ContentSection(const FeatureRow& row) {
    DetailSection section{text::kFeatureContentSection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kFeatureCount, GroupedNumber(row.featureCount));
    AddCells(fields, FeatureColumns(), row, {"geometry"});
    AddField(fields, text::kFeatureLayerCount, Count(row.layers.size()));
    AddField(fields, text::kFeatureFieldCount, Count(row.fields.size()));
    return section;
}

DetailSection ExtentSection(const FeatureRow& row) {
    DetailSection section{text::kDetailsExtent, {}};
    auto& fields = section.fields;
    AddField(fields, text::kExtentX, RangeText(FeatureColumns(), row, "minimumX", "maximumX"));
    AddField(fields, text::kExtentY, RangeText(FeatureColumns(), row, "minimumY", "maximumY"));
    if (!fields.empty()) {
        AddField(fields, text::kUnits, row.crs->isGeographic ? row.crs->angularUnits : row.crs->linearUnits);
    }
    return section;
}

std::vector<DetailSection> FeatureSections(const FeatureRow& row) {
    std::vector<DetailSection> sections{FileSection(row)};
    if (row.loadable) {
        sections.push_back(ContentSection(row));
        sections.push_back(ExtentSection(row));
    }
    std::erase_if(sections, [](const DetailSection& section) { return section.fields.empty(); });
    return sections;
}

/// A table of two columns; `cells` gives those of an item. `none`: said when there are no items.
template <typename Item, typename Cells>
QString ListHtml(const std::vector<Item>& items, std::vector<StringId> captions, StringId none,
                 const Cells& cells, const QString& captionColour) {
    if (items.empty()) {
        return TextHtml(Text(none));
    }
    DetailTable table{std::move(captions), {}};
    const std::size_t listed = std::min(items.size(), kMostListed);
    for (std::size_t item = 0; item < listed; ++item) {
        table.rows.push_back(cells(items[item]));
    }
    return TableHtml(table, items.size() - listed, captionColour);
}

QString LayersHtml(const FeatureRow& row, const QString& captionColour) {
    return ListHtml(
        row.layers, {text::kFeatureLayer, text::kFeatureCount}, text::kFeatureNoLayers,
        [](const FeatureLayer& layer) {
            return std::vector{layer.name, GroupedNumber(layer.count)};
        },
        captionColour);
}

QString AttributesHtml(const FeatureRow& row, const QString& captionColour) {
    return ListHtml(
        row.fields, {text::kFeatureField, text::kFeatureFieldType}, text::kFeatureNoFields,
        [](const FeatureField& field) {
            return std::vector{field.name, field.type};
        },
        captionColour);
}

DetailSection FeatureTotals(std::span<const FeatureRow> rows, std::span<const std::size_t> records) {
    const FileTotals totals =
        TotalsOf(rows, records, [](const FeatureRow& row) -> DetailExtent { return row.extent; });
    std::uint64_t features = 0;
    std::size_t layers = 0;
    for (const std::size_t record : records) {
        if (rows[record].loadable) {
            features += rows[record].featureCount;
            layers += rows[record].layers.size();
        }
    }
    std::vector<DetailField> own;
    AddField(own, text::kFeatureCount, GroupedNumber(features));
    AddField(own, text::kFeatureLayerCount, Count(layers));
    return TotalsSection(totals, std::move(own));
}

}  // namespace

DetailsContent FeatureDetailsContent(std::span<const FeatureRow> rows, std::span<const std::size_t> records,
                                     const QString& captionColour) {
    if (records.size() == 1) {
        const FeatureRow& row = rows[records.front()];
        return {row.path,
                {FileFindingsHtml(row) + SectionsHtml(FeatureSections(row), captionColour),
                 CrsHtml(*row.crs, captionColour), LayersHtml(row, captionColour),
                 AttributesHtml(row, captionColour)}};
    }
    const DetailSection section = FeatureTotals(rows, records);
    return {FormatText(Text(text::kDetailsFilesSelected), {records.size()}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
