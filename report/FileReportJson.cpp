#include "report/FileReportJson.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <type_traits>

#include "las/LasText.h"
#include "report/ReportColumns.h"
#include "support/Text.h"

namespace orvex {

namespace {

using Json = nlohmann::ordered_json;

/// dump()'s text, but control characters without a letter of their own in our output (backspace, form feed,
/// DEL) as \u escapes.
void AppendText(std::string& out, const Json& text) {
    const std::string quoted = text.dump();
    for (std::size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == '\\') {
            ++i;
            out += quoted[i] == 'b' ? "\\u0008" : quoted[i] == 'f' ? "\\u000c" : quoted.substr(i - 1, 2);
        } else if (quoted[i] == 0x7F) {
            out += "\\u007f";
        } else {
            out += quoted[i];
        }
    }
}

/// Shortest decimal that reads back as the same number, 1 rather than dump()'s 1.0; null for NaN and
/// infinity, which JSON lacks.
void AppendNumber(std::string& out, double number) {
    out += std::isfinite(number) ? fmt::format("{}", number) : "null";
}

Json JsonText(const std::string& bytes) {
    return ValidUtf8(bytes);
}

Json JsonText(const std::wstring& text) {
    return ValidUtf8(ToUtf8(text));
}

template <typename List, typename ToJson>
Json JsonList(const List& list, ToJson toJson) {
    Json array = Json::array();
    for (const auto& entry : list) {
        array.push_back(toJson(entry));
    }
    return array;
}

Json JsonTexts(const std::vector<std::wstring>& texts) {
    return JsonList(texts, [](const std::wstring& text) { return JsonText(text); });
}

template <typename Value>
Json OrNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

/// A value that the file states. NaN and infinity are no-data values of real files, so they become texts.
Json Stated(const std::optional<double>& value) {
    if (!value || std::isfinite(*value)) {
        return OrNull(value);
    }
    return std::isnan(*value) ? "nan" : *value > 0 ? "inf" : "-inf";
}

Json CrsJson(const CrsDescription& crs) {
    return {
        {"name", JsonText(crs.name)},
        {"isGeographic", crs.isGeographic},
        {"linearUnits", JsonText(crs.linearUnits)},
        {"angularUnits", JsonText(crs.angularUnits)},
        {"epsg", crs.Epsg()},
        {"verticalName", JsonText(crs.verticalName)},
        {"verticalUnits", JsonText(crs.verticalUnits)},
        {"verticalEpsg", crs.verticalEpsg},
        {"prettyWkt", JsonText(crs.prettyWkt)},
    };
}

template <typename Records>
Json RecordsJson(const Records& records) {
    return JsonList(records, [](const auto& record) -> Json {
        return {
            {"userId", JsonText(record.UserId())},
            {"recordId", record.RecordId()},
            {"length", record.RecordLength()},
            {"description", JsonText(record.Description())},
        };
    });
}

Json ExtraBytesJson(const ExtraBytes& extraBytes) {
    return JsonList(extraBytes.Attributes(), [](const ExtraBytesAttribute& attribute) -> Json {
        return {
            {"name", JsonText(attribute.name)},
            {"type", ExtraBytesType(attribute)},
            {"offset", attribute.pointOffset},
            {"size", attribute.size},
        };
    });
}

/// Number of points of the first return, the second ...
Json PointsByReturnJson(const LasHeader& header) {
    Json counts = Json::array();
    for (int number = 1; number <= header.ReturnCount(); ++number) {
        counts.push_back(header.PointsOfReturn(number));
    }
    return counts;
}

Json LasJson(const LASFile& file) {
    const LasHeader& header = file.Header();
    return {
        {"version", LasVersion(file)},
        {"versionCode", file.GetVersionCode()},
        {"pointFormat", file.PointFormat()},
        {"compressed", header.IsCompressed()},
        {"copc", IsCopc(file)},
        {"headerSize", header.HeaderSize()},
        {"offsetToPoints", header.OffsetToPoints()},
        {"pointRecordLength", header.PointRecordLength()},
        {"pointCount", file.GetPointCount()},
        {"legacyPointCount", header.LegacyPointCount()},
        {"pointsByReturn", PointsByReturnJson(header)},
        {"scale", header.Scale()},
        {"offset", header.Offset()},
        {"min", file.Minimum()},
        {"max", file.Maximum()},
        {"globalEncoding", header.GlobalEncoding()},
        {"globalEncodingBits", JsonText(LasEncodingText(file))},
        {"gpsTime", JsonText(LasGpsTimeText(file))},
        {"vlrs", RecordsJson(file.GetVLRs())},
        {"evlrs", RecordsJson(file.GetEVLRs())},
        {"extraBytes", ExtraBytesJson(file.GetExtraBytes())},
        {"companionStatus", file.GetCompanionStatus()},
        {"vlrText", JsonText(LasVlrText(file))},
        {"evlrText", JsonText(LasEvlrText(file))},
    };
}

Json BandJson(const RasterBandProperties& band) {
    return {
        {"dataType", JsonText(band.dataType)},
        {"bits", band.bits},
        {"blockSize", {band.blockWidth, band.blockHeight}},
        {"colorInterpretation", JsonText(band.colorInterpretation)},
        {"nodata", Stated(band.nodata)},
        {"minimum", Stated(band.minimum)},
        {"maximum", Stated(band.maximum)},
        {"overviews", band.overviews},
        {"description", JsonText(band.description)},
        {"unit", JsonText(band.unit)},
        {"scale", band.scale},
        {"offset", band.offset},
    };
}

Json RasterJson(const RasterRow& raster) {
    const RasterProperties& properties = raster.Properties();
    return {
        {"driver", JsonText(properties.driver)},
        {"width", properties.width},
        {"height", properties.height},
        {"bands", properties.bands},
        {"dataType", JsonText(FirstBand(raster).dataType)},
        {"pixelSize", {properties.pixelWidth, properties.pixelHeight}},
        {"extent", OrNull(properties.extent)},
        {"unit", JsonText(raster.unit)},
        {"bigTiff", raster.file->bigTiff},
        {"compression", JsonText(properties.compression)},
        {"overviews", properties.overviews},
        {"nodata", Stated(FirstBand(raster).nodata)},
        {"kind", properties.rasterKind},
        {"format", JsonText(properties.format)},
        {"interleave", JsonText(properties.interleave)},
        {"bitsPerBand", properties.bitsPerBand},
        {"colorModel", properties.colorModel},
        {"projectionCode", properties.projectionCode},
        {"transform", OrNull(properties.transform)},
        {"controlPoints", properties.controlPoints},
        {"hasRpc", properties.hasRpc},
        {"pixelIs", JsonText(properties.pixelIs)},
        {"acquired", JsonText(properties.acquired)},
        {"sidecars", JsonTexts(properties.sidecars)},
        {"totalBytes", properties.totalBytes},
        {"bandDetails", JsonList(*properties.bandDetails, BandJson)},
    };
}

Json FeatureJson(const FeatureRow& feature) {
    return {
        {"type", JsonText(std::wstring(FeatureKindName(feature.kind)))},
        {"featureCount", feature.featureCount},
        {"geometry", JsonText(feature.geometry)},
        {"layers", JsonList(feature.layers,
                            [](const FeatureLayer& layer) -> Json {
                                return {{"name", JsonText(layer.name)}, {"count", layer.count}};
                            })},
        {"extent", OrNull(feature.extent)},
        {"fields", JsonList(feature.fields,
                            [](const FeatureField& field) -> Json {
                                return {{"name", JsonText(field.name)}, {"type", JsonText(field.type)}};
                            })},
    };
}

/// The metadata under the library's keys.
Json PhotoJson(const PhotoRow& photo) {
    Json json;
    ForEachKey(photo.metadata, [&](const char* key, const auto& value) {
        if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>) {
            json[key] = value;
        } else {
            json[key] = JsonText(value);
        }
    });
    json["timeUtc"] = JsonText(photo.timeUtc);
    json["truePose"] = photo.state == PhotoState::TruePose;
    return json;
}

Json CellJson(const GridCell& cell) {
    if (const auto* number = std::get_if<double>(&cell)) {
        return *number;
    }
    const bool isEmpty = std::holds_alternative<std::monostate>(cell);
    return isEmpty ? Json() : JsonText(FormatCell(cell, L""));
}

/// The file's cells under the names of their columns; null for a file that could not be opened.
Json CellsJson(const FileReport& report) {
    Json cells;
    for (const ReportColumn& column : ReportColumns()) {
        if (const std::optional<GridCell> cell = column.Cell(report)) {
            cells[column.Look().name] = CellJson(*cell);
        }
    }
    return cells;
}

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

/// Null for a finding about the file as a whole.
Json WhereJson(const FindingPlace& where) {
    const std::string member = where.member + (where.index ? "/" + std::to_string(*where.index) : "");
    if (member.empty() && *where.sidecar == '\0' && !where.offset) {
        return {};
    }
    return {
        {"member", TextOrNull(member)},
        {"sidecar", TextOrNull(where.sidecar)},
        {"offset", OrNull(where.offset)},
    };
}

Json FindingsJson(const std::vector<Finding>& findings) {
    constexpr std::array kSeverities{"note", "warning", "error"};
    return JsonList(findings, [&](const Finding& finding) -> Json {
        return {
            {"code", finding.code},
            {"severity", kSeverities.at(static_cast<std::size_t>(finding.severity))},
            {"text", JsonText(finding.text)},
            {"where", WhereJson(finding.where)},
        };
    });
}

}  // namespace

void AppendJson(std::string& out, const nlohmann::ordered_json& value, std::optional<std::size_t> depth) {
    if (value.is_string()) {
        AppendText(out, value);
    } else if (value.is_number_float()) {
        AppendNumber(out, value.get<double>());
    } else if (!value.is_structured() || value.empty()) {
        out += value.dump();
    } else {
        const bool isOneLine = !depth || value.front().is_number();
        const std::string lineEnd = isOneLine ? "" : '\n' + std::string(2 * *depth, ' ');
        const char* separator = "";
        out += value.is_object() ? '{' : '[';
        for (const auto& [key, entry] : value.items()) {
            out += separator;
            out += isOneLine ? "" : lineEnd + "  ";
            out += value.is_object() ? Json(key).dump() + ": " : "";
            AppendJson(out, entry, depth ? std::optional(*depth + 1) : std::nullopt);
            separator = isOneLine ? ", " : ",";
        }
        out += lineEnd;
        out += value.is_object() ? '}' : ']';
    }
}

nlohmann::ordered_json FileReportJson(const FileReport& report) {
    return {
        {"schema", kReportSchema},
        {"path", JsonText(report.path)},
        {"kind", report.kind},
        {"loadable", report.loadable},
        {"summary", JsonText(report.summary)},
        {"findings", FindingsJson(report.findings)},
        {"columns", CellsJson(report)},
        {"crs", report.crs ? CrsJson(*report.crs) : Json()},
        {"las", report.las ? LasJson(*report.las->file) : Json()},
        {"raster", report.raster ? RasterJson(*report.raster) : Json()},
        {"feature", report.feature ? FeatureJson(*report.feature) : Json()},
        {"photo", report.photo ? PhotoJson(*report.photo) : Json()},
        {"transferred", report.cloudStatus ? Json(report.transferred) : Json()},
    };
}

}  // namespace orvex
