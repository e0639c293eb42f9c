#include "host/inspect/RasterJson.h"

#include <cmath>
#include <optional>

namespace orvex {

namespace {

template <std::size_t Count>
void WriteNumbersOrNull(JsonWriter& json, const char* key,
                        const std::optional<std::array<double, Count>>& numbers) {
    if (numbers) {
        json.Member(key, *numbers);
    } else {
        json.Key(key);
        json.Null();
    }
}

/// A value that a file states. JSON has no word for "no number", which files use to mean just that.
void WriteStated(JsonWriter& json, const char* key, const std::optional<double>& value) {
    json.Key(key);
    if (!value) {
        json.Null();
    } else if (std::isfinite(*value)) {
        json.Number(*value);
    } else {
        json.Utf8(std::isnan(*value) ? "nan" : *value > 0 ? "inf" : "-inf");
    }
}

void WriteBlockSize(JsonWriter& json, const RasterBandProperties& band) {
    json.Key("blockSize");
    json.BeginArray(true);
    json.Integer(band.blockWidth);
    json.Integer(band.blockHeight);
    json.EndArray();
}

void WriteBand(JsonWriter& json, const RasterBandProperties& band) {
    json.BeginObject();
    json.Member("dataType", band.dataType);
    json.Member("bits", band.bits);
    WriteBlockSize(json, band);
    json.Member("colorInterpretation", band.colorInterpretation);
    WriteStated(json, "nodata", band.nodata);
    WriteStated(json, "minimum", band.minimum);
    WriteStated(json, "maximum", band.maximum);
    json.Member("overviews", band.overviews);
    json.Member("description", band.description);
    json.Member("unit", band.unit);
    json.Member("scale", band.scale);
    json.Member("offset", band.offset);
    json.EndObject();
}

void WriteDetails(JsonWriter& json, const RasterProperties& properties) {
    json.Member("format", properties.format);
    json.Member("interleave", properties.interleave);
    json.Member("bitsPerBand", properties.bitsPerBand);
    json.Member("colorModel", properties.colorModel);
    json.Member("projectionCode", properties.projectionCode);
    WriteNumbersOrNull(json, "transform", properties.transform);
    json.Member("controlPoints", properties.controlPoints);
    json.Member("hasRpc", properties.hasRpc);
    json.Member("pixelIs", properties.pixelIs);
    json.Member("acquired", properties.acquired);
    json.Member("sidecars", properties.sidecars);
    json.Member("totalBytes", properties.totalBytes);
    json.Key("bandDetails");
    json.BeginArray();
    for (const RasterBandProperties& band : properties.bandDetails) {
        WriteBand(json, band);
    }
    json.EndArray();
}

}  // namespace

void WriteRasterJson(JsonWriter& json, const RasterReport& report) {
    const RasterProperties& properties = report.properties;
    json.BeginObject();
    json.Member("driver", properties.driver);
    json.Member("width", properties.width);
    json.Member("height", properties.height);
    json.Member("bands", properties.bands);
    json.Member("dataType", report.FirstBand().dataType);
    json.Member("pixelSize", std::array{properties.pixelWidth, properties.pixelHeight});
    WriteNumbersOrNull(json, "extent", properties.extent);
    json.Member("unit", report.unit);
    json.Member("bigTiff", report.bigTiff);
    json.Member("compression", properties.compression);
    json.Member("overviews", properties.overviews);
    WriteStated(json, "nodata", report.FirstBand().nodata);
    json.Member("kind", properties.rasterKind);
    WriteDetails(json, properties);
    json.EndObject();
}

}  // namespace orvex
