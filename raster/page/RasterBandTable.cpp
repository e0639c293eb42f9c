#include "raster/page/RasterBandTable.h"

#include <algorithm>
#include <functional>

#include "raster/page/RasterValues.h"
#include "support/Format.h"

namespace orvex {

namespace {

struct BandColumn {
    StringId caption;
    std::function<std::wstring(const RasterBandProperties&)> text;
};

std::wstring Optional(const std::optional<double>& value) {
    return value.has_value() ? ValueText(*value) : std::wstring();
}

/// A factor or offset that changes nothing is not told.
std::wstring Unless(double neutral, double value) {
    return value == neutral ? std::wstring() : ValueText(value);
}

std::wstring Block(const RasterBandProperties& band) {
    return band.blockWidth > 0 && band.blockHeight > 0
               ? FormatText(L"%d x %d", {band.blockWidth, band.blockHeight})
               : std::wstring();
}

const std::vector<BandColumn>& BandColumns() {
    using Band = RasterBandProperties;
    static const std::vector<BandColumn> columns{
        {text::kRasterDataType, [](const Band& band) { return band.dataType; }},
        {text::kBitsPerBand, [](const Band& band) { return std::to_wstring(band.bits); }},
        {text::kRasterBandColor, [](const Band& band) { return band.colorInterpretation; }},
        {text::kRasterNoDataValue, [](const Band& band) { return Optional(band.nodata); }},
        {text::kRasterMinimum, [](const Band& band) { return Optional(band.minimum); }},
        {text::kRasterMaximum, [](const Band& band) { return Optional(band.maximum); }},
        {text::kRasterValueUnit, [](const Band& band) { return band.unit; }},
        {text::kRasterScale, [](const Band& band) { return Unless(1, band.scale); }},
        {text::kRasterOffset, [](const Band& band) { return Unless(0, band.offset); }},
        {text::kRasterBlockSize, Block},
        {text::kOverviews, [](const Band& band) { return std::to_wstring(band.overviews); }},
        {text::kRasterBandDescription, [](const Band& band) { return band.description; }},
    };
    return columns;
}

}  // namespace

DetailTable RasterBands(const RasterRow& row) {
    const std::vector<RasterBandProperties>& bands = row.File().properties.bandDetails;
    DetailTable table;
    if (bands.empty()) {
        return table;
    }
    table.captions.push_back(text::kRasterBand);
    for (std::size_t band = 1; band <= bands.size(); ++band) {
        table.rows.push_back({std::to_wstring(band)});
    }
    for (const BandColumn& column : BandColumns()) {
        std::vector<std::wstring> cells;
        bool isTold = false;
        for (const RasterBandProperties& band : bands) {
            cells.push_back(column.text(band));
            isTold = isTold || !cells.back().empty();
        }
        if (!isTold) {
            continue;
        }
        table.captions.push_back(column.caption);
        for (std::size_t band = 0; band < bands.size(); ++band) {
            table.rows[band].push_back(std::move(cells[band]));
        }
    }
    return table;
}

std::size_t UnlistedBands(const RasterRow& row) {
    const RasterProperties& properties = row.File().properties;
    const auto bands = static_cast<std::size_t>(std::max(properties.bands, 0));
    return properties.bandDetails.size() < bands ? bands - properties.bandDetails.size() : 0;
}

}  // namespace orvex
