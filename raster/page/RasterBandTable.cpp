#include "raster/page/RasterBandTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>

#include "support/Format.h"

namespace orvex {
namespace {

std::wstring ValueText(double value) {
    if (std::isnan(value)) {
        return L"NaN";
    }
    constexpr double kLeastPlain = 1e-5;
    constexpr double kMostPlain = 1e15;
    const double size = std::abs(value);
    const bool isPlain = size == 0 || (size >= kLeastPlain && size < kMostPlain);
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    // The fewest digits that give the value back, in the precision that it has.
    std::array<char, 32> digits{};
    const auto asFloat = static_cast<float>(value);
    const std::to_chars_result end =
        std::isfinite(asFloat) && static_cast<double>(asFloat) == value
            ? std::to_chars(digits.data(), digits.data() + digits.size(), asFloat, format)
            : std::to_chars(digits.data(), digits.data() + digits.size(), value, format);
    return {digits.data(), end.ptr};
}

constexpr std::size_t kMostTexts = 8;

std::wstring Distinct(const RasterProperties& properties,
                      const std::function<std::wstring(const RasterBandProperties&)>& textOf) {
    std::vector<std::wstring> texts;
    std::wstring joined;
    for (const RasterBandProperties& band : *properties.bandDetails) {
        std::wstring text = textOf(band);
        if (text.empty() || std::ranges::find(texts, text) != texts.end()) {
            continue;
        }
        if (texts.size() == kMostTexts) {
            return joined + L", ...";
        }
        joined += (joined.empty() ? L"" : L", ") + text;
        texts.push_back(std::move(text));
    }
    return joined;
}

/// The best of the bands' statements.
template <typename Better>
std::wstring Best(const RasterProperties& properties, std::optional<double> RasterBandProperties::*member,
                  Better better) {
    std::optional<double> best;
    for (const RasterBandProperties& band : *properties.bandDetails) {
        const std::optional<double>& value = band.*member;
        if (value.has_value() && !std::isnan(*value) && (!best.has_value() || better(*value, *best))) {
            best = value;
        }
    }
    return best.has_value() ? ValueText(*best) : std::wstring();
}

std::wstring Block(const RasterBandProperties& band) {
    return band.blockWidth > 0 && band.blockHeight > 0
               ? FormatText(L"%d x %d", {band.blockWidth, band.blockHeight})
               : std::wstring();
}

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

std::wstring DistinctOfBands(const RasterProperties& properties, std::wstring RasterBandProperties::*text) {
    return Distinct(properties, [text](const RasterBandProperties& band) { return band.*text; });
}

std::wstring DistinctNodata(const RasterProperties& properties) {
    const std::wstring values = Distinct(properties, [](const RasterBandProperties& band) {
        return band.nodata.has_value() ? ValueText(*band.nodata) : std::wstring();
    });
    return values.empty() ? Text(text::kCellNone) : values;
}

std::wstring DistinctBlocks(const RasterProperties& properties) {
    return Distinct(properties, Block);
}

std::wstring LowestMinimum(const RasterProperties& properties) {
    return Best(properties, &RasterBandProperties::minimum, std::less<double>());
}

std::wstring HighestMaximum(const RasterProperties& properties) {
    return Best(properties, &RasterBandProperties::maximum, std::greater<double>());
}

DetailTable BandTable(const RasterProperties& properties) {
    const std::vector<RasterBandProperties>& bands = properties.bandDetails;
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
        bool isStated = false;
        for (const RasterBandProperties& band : bands) {
            cells.push_back(column.text(band));
            isStated = isStated || !cells.back().empty();
        }
        if (!isStated) {
            continue;
        }
        table.captions.push_back(column.caption);
        for (std::size_t band = 0; band < bands.size(); ++band) {
            table.rows[band].push_back(std::move(cells[band]));
        }
    }
    return table;
}

std::size_t UnlistedBands(const RasterProperties& properties) {
    const auto bands = static_cast<std::size_t>(std::max(properties.bands, 0));
    return properties.bandDetails->size() < bands ? bands - properties.bandDetails->size() : 0;
}

}  // namespace orvex
