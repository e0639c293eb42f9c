#include "host/inspect/JsonWriter.h"
#include "host/inspect/RasterJson.h"
#include "host/inspect/ReportWriter.h"

namespace orvex {

namespace {

void WriteRecords(JsonWriter& json, const char* key, const std::vector<LasRecordReport>& records) {
    json.Key(key);
    json.BeginArray();
    for (const LasRecordReport& record : records) {
        json.BeginObject();
        json.Member("userId", record.userId);
        json.Member("recordId", record.recordId);
        json.Member("length", record.length);
        json.Member("description", record.description);
        json.EndObject();
    }
    json.EndArray();
}

void WriteCrs(JsonWriter& json, const CrsDescription& crs) {
    json.BeginObject();
    json.Member("name", crs.name);
    json.Member("isGeographic", crs.isGeographic);
    json.Member("linearUnits", crs.linearUnits);
    json.Member("angularUnits", crs.angularUnits);
    json.Member("epsg", crs.epsg);
    json.Member("prettyWkt", crs.prettyWkt);
    json.EndObject();
}

void WriteExtraBytes(JsonWriter& json, const std::vector<LasExtraBytesReport>& attributes) {
    json.Key("extraBytes");
    json.BeginArray();
    for (const LasExtraBytesReport& attribute : attributes) {
        json.BeginObject();
        json.Member("name", attribute.name);
        json.Member("offset", attribute.offset);
        json.Member("size", attribute.size);
        json.EndObject();
    }
    json.EndArray();
}

void WriteLas(JsonWriter& json, const LasReport& las) {
    json.BeginObject();
    json.Member("version", las.version);
    json.Member("versionCode", las.versionCode);
    json.Member("pointFormat", las.pointFormat);
    json.Member("compressed", las.compressed);
    json.Member("headerSize", las.headerSize);
    json.Member("offsetToPoints", las.offsetToPoints);
    json.Member("pointRecordLength", las.pointRecordLength);
    json.Member("pointCount", las.pointCount);
    json.Member("scale", las.scale);
    json.Member("offset", las.offset);
    json.Member("min", las.min);
    json.Member("max", las.max);
    json.Member("globalEncoding", las.globalEncoding);
    json.Member("gpsTime", las.gpsTime);
    WriteRecords(json, "vlrs", las.vlrs);
    WriteRecords(json, "evlrs", las.evlrs);
    WriteExtraBytes(json, las.extraBytes);
    json.Member("companionStatus", las.companionStatus);
    json.Member("vlrText", las.vlrText);
    json.EndObject();
}

class JsonReportWriter final : public ReportWriter {
  public:
    explicit JsonReportWriter(std::ostream& out) : json_(out) { json_.BeginArray(); }

    void Write(const FileReport& report) override {
        json_.BeginObject();
        json_.Member("path", report.path);
        json_.Member("kind", report.kind);
        json_.Member("loadable", report.loadable);
        json_.Member("summary", report.summary);
        json_.Member("findings", report.findings);
        json_.Key("crs");
        report.crs ? WriteCrs(json_, *report.crs) : json_.Null();
        json_.Key("las");
        report.las ? WriteLas(json_, *report.las) : json_.Null();
        json_.Key("raster");
        report.raster ? WriteRasterJson(json_, *report.raster) : json_.Null();
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
