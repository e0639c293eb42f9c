#include <fmt/format.h>

#include <cmath>
#include <ostream>

#include "host/inspect/JsonWriter.h"
#include "host/inspect/ReportWriter.h"
#include "support/Text.h"

namespace orvex {

namespace {

std::string Number(double value) {
    return std::isfinite(value) ? fmt::format("{}", value) : std::string();
}

template <typename Value>
std::string Whole(Value value) {
    return fmt::format("{}", value);
}

std::string Bool(bool value) {
    return value ? "true" : "false";
}

/// A number of an optional array; empty without it.
std::string Place(const RasterReport& raster, std::size_t index) {
    return raster.properties.extent ? Number((*raster.properties.extent)[index]) : std::string();
}

std::string Findings(const FileReport& report) {
    std::wstring findings;
    for (const std::wstring& finding : report.findings) {
        findings += (findings.empty() ? L"" : L"\n") + finding;
    }
    return ToUtf8(findings);
}

const CrsDescription& Crs(const FileReport& report) {
    static const CrsDescription none;
    return report.crs ? *report.crs : none;
}

using Report = const FileReport&;
using Las = const LasReport&;
using Raster = const RasterReport&;

/// What a column says of every file, of LAS files, of rasters; a null says nothing.
struct Column {
    const char* name;
    std::string (*ofFile)(Report);
    std::string (*ofLas)(Las) = nullptr;
    std::string (*ofRaster)(Raster) = nullptr;
};

// Columns are only ever added, at the end: scripts count them.
constexpr Column kColumns[] = {
    {"path", [](Report r) { return ToUtf8(r.path); }},
    {"kind", [](Report r) { return r.kind; }},
    {"loadable", [](Report r) { return Bool(r.loadable); }},
    {"summary", [](Report r) { return ToUtf8(r.summary); }},
    {"findings", Findings},
    {"crs", [](Report r) { return ToUtf8(Crs(r).name); }},
    {"epsg", [](Report r) { return Crs(r).epsg == 0 ? std::string() : Whole(Crs(r).epsg); }},
    {"linearUnits", [](Report r) { return ToUtf8(Crs(r).linearUnits); }},
    {"angularUnits", [](Report r) { return ToUtf8(Crs(r).angularUnits); }},
    {"version", nullptr, [](Las l) { return l.version; }},
    {"pointFormat", nullptr, [](Las l) { return Whole(l.pointFormat); }},
    {"compressed", nullptr, [](Las l) { return Bool(l.compressed); }},
    {"headerSize", nullptr, [](Las l) { return Whole(l.headerSize); }},
    {"offsetToPoints", nullptr, [](Las l) { return Whole(l.offsetToPoints); }},
    {"recordLength", nullptr, [](Las l) { return Whole(l.pointRecordLength); }},
    {"pointCount", nullptr, [](Las l) { return Whole(l.pointCount); }},
    {"scaleX", nullptr, [](Las l) { return Number(l.scale[0]); }},
    {"scaleY", nullptr, [](Las l) { return Number(l.scale[1]); }},
    {"scaleZ", nullptr, [](Las l) { return Number(l.scale[2]); }},
    {"offsetX", nullptr, [](Las l) { return Number(l.offset[0]); }},
    {"offsetY", nullptr, [](Las l) { return Number(l.offset[1]); }},
    {"offsetZ", nullptr, [](Las l) { return Number(l.offset[2]); }},
    {"minX", nullptr, [](Las l) { return Number(l.min[0]); }, [](Raster r) { return Place(r, 0); }},
    {"minY", nullptr, [](Las l) { return Number(l.min[1]); }, [](Raster r) { return Place(r, 1); }},
    {"minZ", nullptr, [](Las l) { return Number(l.min[2]); }},
    {"maxX", nullptr, [](Las l) { return Number(l.max[0]); }, [](Raster r) { return Place(r, 2); }},
    {"maxY", nullptr, [](Las l) { return Number(l.max[1]); }, [](Raster r) { return Place(r, 3); }},
    {"maxZ", nullptr, [](Las l) { return Number(l.max[2]); }},
    {"gpsTime", nullptr, [](Las l) { return ToUtf8(l.gpsTime); }},
    {"vlrs", nullptr, [](Las l) { return Whole(l.vlrs.size()); }},
    {"evlrs", nullptr, [](Las l) { return Whole(l.evlrs.size()); }},
    {"companionStatus", nullptr, [](Las l) { return Whole(l.companionStatus); }},
    {"driver", nullptr, nullptr, [](Raster r) { return ToUtf8(r.properties.driver); }},
    {"width", nullptr, nullptr, [](Raster r) { return Whole(r.properties.width); }},
    {"height", nullptr, nullptr, [](Raster r) { return Whole(r.properties.height); }},
    {"bands", nullptr, nullptr, [](Raster r) { return Whole(r.properties.bands); }},
    {"dataType", nullptr, nullptr, [](Raster r) { return ToUtf8(r.FirstBand().dataType); }},
    {"pixelWidth", nullptr, nullptr, [](Raster r) { return Number(r.properties.pixelWidth); }},
    {"pixelHeight", nullptr, nullptr, [](Raster r) { return Number(r.properties.pixelHeight); }},
    {"unit", nullptr, nullptr, [](Raster r) { return ToUtf8(r.unit); }},
    {"bigTiff", nullptr, nullptr, [](Raster r) { return Bool(r.bigTiff); }},
    {"compression", nullptr, nullptr, [](Raster r) { return ToUtf8(r.properties.compression); }},
    {"overviews", nullptr, nullptr, [](Raster r) { return Whole(r.properties.overviews); }},
    {"nodata", nullptr, nullptr,
     [](Raster r) {
         const auto& nodata = r.FirstBand().nodata;
         return nodata ? fmt::format("{}", *nodata) : std::string();
     }},
    {"rasterKind", nullptr, nullptr, [](Raster r) { return Whole(r.properties.rasterKind); }}};

std::string Value(const Column& column, const FileReport& report) {
    if (column.ofFile != nullptr) {
        return column.ofFile(report);
    }
    if (report.las && column.ofLas != nullptr) {
        return column.ofLas(*report.las);
    }
    return report.raster && column.ofRaster != nullptr ? column.ofRaster(*report.raster) : std::string();
}

/// RFC 4180: quoted when it holds a separator, a quote or a line end; quotes are doubled.
std::string CsvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return quoted + '"';
}

class CsvReportWriter final : public ReportWriter {
  public:
    explicit CsvReportWriter(std::ostream& out) : out_(out) {
        for (const Column& column : kColumns) {
            Field(column.name);
        }
        EndLine();
    }

    void Write(const FileReport& report) override {
        for (const Column& column : kColumns) {
            Field(Value(column, report));
        }
        EndLine();
    }

    void Finish() override {}

  private:
    void Field(std::string_view text) {
        out_ << (first_ ? "" : ",") << CsvField(ValidUtf8(text));
        first_ = false;
    }
    void EndLine() {
        out_ << "\r\n";
        first_ = true;
    }

    std::ostream& out_;
    bool first_ = true;
};

}  // namespace

std::unique_ptr<ReportWriter> MakeCsvReportWriter(std::ostream& out) {
    return std::make_unique<CsvReportWriter>(out);
}

}  // namespace orvex
