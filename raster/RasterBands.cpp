#include "raster/RasterBands.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "raster/BandFacts.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::wstring Wide(const char* text) {
    return FromUtf8(text == nullptr ? "" : text);
}

/// A number in a text of GDAL's; none when the text is missing or no number.
template <typename Number>
std::optional<Number> Parse(const char* text) {
    Number number{};
    if (text == nullptr || std::from_chars(text, text + std::strlen(text), number).ec != std::errc()) {
        return std::nullopt;
    }
    return number;
}

using StatedLimit = double(CPL_STDCALL*)(GDALRasterBandH, int*);

/// A minimum or maximum that somebody has found and written down. Without one GDAL returns the limit of the
/// data type and says so.
std::optional<double> Limit(GDALRasterBandH band, const char* item, StatedLimit get, bool onlyStated) {
    if (const auto found = Parse<double>(GDALGetMetadataItem(band, item, nullptr))) {
        return found;
    }
    int isStated = 0;
    const double value = onlyStated ? 0 : get(band, &isStated);
    return isStated != 0 ? std::optional(value) : std::nullopt;
}

RasterBandProperties Describe(GDALRasterBandH band, bool onlyStated) {
    RasterBandProperties properties;
    properties.dataType = Wide(GDALGetDataTypeName(GDALGetRasterDataType(band)));
    properties.bits = BandBits(band);
    GDALGetBlockSize(band, &properties.blockWidth, &properties.blockHeight);
    properties.colorInterpretation =
        Wide(GDALGetColorInterpretationName(GDALGetRasterColorInterpretation(band)));
    properties.nodata = BandNodata(band);
    properties.minimum = Limit(band, "STATISTICS_MINIMUM", GDALGetRasterMinimum, onlyStated);
    properties.maximum = Limit(band, "STATISTICS_MAXIMUM", GDALGetRasterMaximum, onlyStated);
    properties.overviews = onlyStated ? 0 : GDALGetOverviewCount(band);
    properties.description = Wide(GDALGetDescription(band));
    properties.unit = Wide(GDALGetRasterUnitType(band));
    int isStated = 0;
    const double scale = GDALGetRasterScale(band, &isStated);
    properties.scale = isStated != 0 ? scale : 1;
    const double offset = GDALGetRasterOffset(band, &isStated);
    properties.offset = isStated != 0 ? offset : 0;
    return properties;
}

}  // namespace

void ReadBands(GDALDatasetH dataset, bool onlyStated, RasterProperties& properties) {
    properties.bands = GDALGetRasterCount(dataset);
    const int described = std::min(properties.bands, static_cast<int>(kMostBandsDescribed));
    for (int number = 1; number <= described; ++number) {
        GDALRasterBandH band = GDALGetRasterBand(dataset, number);
        if (band == nullptr) {
            break;
        }
        properties.bandDetails.push_back(Describe(band, onlyStated));
    }
    if (!properties.bandDetails.empty()) {
        properties.bitsPerBand = properties.bandDetails.front().bits;
        properties.overviews = properties.bandDetails.front().overviews;
    }
}

}  // namespace orvex
