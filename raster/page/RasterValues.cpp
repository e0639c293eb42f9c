#include "raster/page/RasterValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kMostTexts = 8;

std::wstring Distinct(const RasterProperties& properties,
                      const std::function<std::wstring(const RasterBandProperties&)>& textOf) {
    std::vector<std::wstring> texts;
    std::wstring joined;
    for (const RasterBandProperties& band : properties.bandDetails) {
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
    for (const RasterBandProperties& band : properties.bandDetails) {
        const std::optional<double>& value = band.*member;
        if (value.has_value() && !std::isnan(*value) && (!best.has_value() || better(*value, *best))) {
            best = value;
        }
    }
    return best.has_value() ? ValueText(*best) : std::wstring();
}

}  // namespace

std::wstring ValueText(double value) {
    if (std::isnan(value)) {
        return L"NaN";
    }
    // The fewest digits that give the value back, in the precision that it has.
    std::array<char, 32> digits{};
    const auto asFloat = static_cast<float>(value);
    const std::to_chars_result end =
        std::isfinite(asFloat) && static_cast<double>(asFloat) == value
            ? std::to_chars(digits.data(), digits.data() + digits.size(), asFloat)
            : std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return {digits.data(), end.ptr};
}

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
    return Distinct(properties, [](const RasterBandProperties& band) {
        return band.blockWidth > 0 && band.blockHeight > 0
                   ? FormatText(L"%d x %d", {band.blockWidth, band.blockHeight})
                   : std::wstring();
    });
}

std::wstring LowestMinimum(const RasterProperties& properties) {
    return Best(properties, &RasterBandProperties::minimum, std::less<double>());
}

std::wstring HighestMaximum(const RasterProperties& properties) {
    return Best(properties, &RasterBandProperties::maximum, std::greater<double>());
}

}  // namespace orvex
