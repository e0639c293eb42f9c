#include "host/inspect/JsonWriter.h"
#include "host/inspect/ReportWriter.h"

namespace orvex {

namespace {

void WriteTriple(JsonWriter& json, const char* key, const std::array<double, 3>& values) {
    json.Key(key);
    json.BeginArray(true);
    for (const double value : values) {
        json.Number(value);
    }
    json.EndArray();
}

void WriteRecords(JsonWriter& json, const char* key, const std::vector<LasRecordReport>& records) {
    json.Key(key);
    json.BeginArray();
    for (const LasRecordReport& record : records) {
        json.BeginObject();
        json.Key("userId");
        json.Utf8(record.userId);
        json.Key("recordId");
        json.Unsigned(record.recordId);
        json.Key("length");
        json.Unsigned(record.length);
        json.Key("description");
        json.Utf8(record.description);
        json.EndObject();
    }
    json.EndArray();
}

void WriteCrs(JsonWriter& json, const CrsDescription& crs) {
    json.BeginObject();
    json.Key("name");
    json.Text(crs.name);
    json.Key("isGeographic");
    json.Bool(crs.isGeographic);
    json.Key("linearUnits");
    json.Text(crs.linearUnits);
    json.Key("angularUnits");
    json.Text(crs.angularUnits);
    json.Key("epsg");
    json.Integer(crs.epsg);
    json.Key("prettyWkt");
    json.Text(crs.prettyWkt);
    json.EndObject();
}

void WriteExtraBytes(JsonWriter& json, const std::vector<LasExtraBytesReport>& attributes) {
    json.Key("extraBytes");
    json.BeginArray();
    for (const LasExtraBytesReport& attribute : attributes) {
        json.BeginObject();
        json.Key("name");
        json.Text(attribute.name);
        json.Key("offset");
        json.Unsigned(attribute.offset);
        json.Key("size");
        json.Unsigned(attribute.size);
        json.EndObject();
    }
    json.EndArray();
}

void WriteLas(JsonWriter& json, const LasReport& las) {
    json.BeginObject();
    json.Key("version");
    json.Utf8(las.version);
    json.Key("versionCode");
    json.Integer(las.versionCode);
    json.Key("pointFormat");
    json.Integer(las.pointFormat);
    json.Key("compressed");
    json.Bool(las.compressed);
    json.Key("headerSize");
    json.Unsigned(las.headerSize);
    json.Key("offsetToPoints");
    json.Unsigned(las.offsetToPoints);
    json.Key("pointRecordLength");
    json.Unsigned(las.pointRecordLength);
    json.Key("pointCount");
    json.Unsigned(las.pointCount);
    WriteTriple(json, "scale", las.scale);
    WriteTriple(json, "offset", las.offset);
    WriteTriple(json, "min", las.min);
    WriteTriple(json, "max", las.max);
    json.Key("globalEncoding");
    json.Unsigned(las.globalEncoding);
    json.Key("gpsTime");
    json.Text(las.gpsTime);
    WriteRecords(json, "vlrs", las.vlrs);
    WriteRecords(json, "evlrs", las.evlrs);
    WriteExtraBytes(json, las.extraBytes);
    json.Key("companionStatus");
    json.Integer(las.companionStatus);
    json.Key("vlrText");
    json.Text(las.vlrText);
    json.EndObject();
}

class JsonReportWriter final : public ReportWriter {
  public:
    explicit JsonReportWriter(std::ostream& out) : json_(out) { json_.BeginArray(); }

    void Write(const FileReport& report) override {
        json_.BeginObject();
        json_.Key("path");
        json_.Text(report.path);
        json_.Key("kind");
        json_.Utf8(report.kind);
        json_.Key("loadable");
        json_.Bool(report.loadable);
        json_.Key("summary");
        json_.Text(report.summary);
        json_.Key("findings");
        json_.BeginArray();
        for (const std::wstring& finding : report.findings) {
            json_.Text(finding);
        }
        json_.EndArray();
        json_.Key("crs");
        report.crs ? WriteCrs(json_, *report.crs) : json_.Null();
        json_.Key("las");
        report.las ? WriteLas(json_, *report.las) : json_.Null();
        json_.EndObject();
    }

    void Finish() override { json_.EndArray(); }

  private:
    JsonWriter json_;
};

}  // namespace

std::unique_ptr<ReportWriter> MakeJsonReportWriter(std::ostream& out) {
    return std::make_unique<JsonReportWriter>(out);
}

}  // namespace orvex
