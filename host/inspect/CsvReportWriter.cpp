#include <fmt/format.h>

#include <cmath>
#include <ostream>

#include "host/inspect/ReportWriter.h"
#include "las/LasText.h"
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

/// Edge of the extent; empty without one.
std::string Edge(const RasterRow& raster, std::size_t index) {
    return raster.Properties().extent ? Number((*raster.Properties().extent)[index]) : std::string();
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
using Las = const LASFile&;
using Raster = const RasterRow&;

/// Cells for every file, or for LAS files and rasters; null leaves the cell empty.
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
    {"version", nullptr, [](Las l) { return LasVersion(l); }},
    {"pointFormat", nullptr, [](Las l) { return Whole(l.PointFormat()); }},
    {"compressed", nullptr, [](Las l) { return Bool(l.Header().IsCompressed()); }},
    {"headerSize", nullptr, [](Las l) { return Whole(l.Header().HeaderSize()); }},
    {"offsetToPoints", nullptr, [](Las l) { return Whole(l.Header().OffsetToPoints()); }},
    {"recordLength", nullptr, [](Las l) { return Whole(l.Header().PointRecordLength()); }},
    {"pointCount", nullptr, [](Las l) { return Whole(l.GetPointCount()); }},
    {"scaleX", nullptr, [](Las l) { return Number(l.Header().Scale()[0]); }},
    {"scaleY", nullptr, [](Las l) { return Number(l.Header().Scale()[1]); }},
    {"scaleZ", nullptr, [](Las l) { return Number(l.Header().Scale()[2]); }},
    {"offsetX", nullptr, [](Las l) { return Number(l.Header().Offset()[0]); }},
    {"offsetY", nullptr, [](Las l) { return Number(l.Header().Offset()[1]); }},
    {"offsetZ", nullptr, [](Las l) { return Number(l.Header().Offset()[2]); }},
    {"minX", nullptr, [](Las l) { return Number(l.Minimum()[0]); }, [](Raster r) { return Edge(r, 0); }},
    {"minY", nullptr, [](Las l) { return Number(l.Minimum()[1]); }, [](Raster r) { return Edge(r, 1); }},
    {"minZ", nullptr, [](Las l) { return Number(l.Minimum()[2]); }},
    {"maxX", nullptr, [](Las l) { return Number(l.Maximum()[0]); }, [](Raster r) { return Edge(r, 2); }},
    {"maxY", nullptr, [](Las l) { return Number(l.Maximum()[1]); }, [](Raster r) { return Edge(r, 3); }},
    {"maxZ", nullptr, [](Las l) { return Number(l.Maximum()[2]); }},
    {"gpsTime", nullptr, [](Las l) { return ToUtf8(LasGpsTimeText(l)); }},
    {"vlrs", nullptr, [](Las l) { return Whole(l.GetVLRs().size()); }},
    {"evlrs", nullptr, [](Las l) { return Whole(l.GetEVLRs().size()); }},
    {"companionStatus", nullptr, [](Las l) { return Whole(l.GetCompanionStatus()); }},
    {"driver", nullptr, nullptr, [](Raster r) { return ToUtf8(r.Properties().driver); }},
    {"width", nullptr, nullptr, [](Raster r) { return Whole(r.Properties().width); }},
    {"height", nullptr, nullptr, [](Raster r) { return Whole(r.Properties().height); }},
    {"bands", nullptr, nullptr, [](Raster r) { return Whole(r.Properties().bands); }},
    {"dataType", nullptr, nullptr, [](Raster r) { return ToUtf8(FirstBand(r).dataType); }},
    {"pixelWidth", nullptr, nullptr, [](Raster r) { return Number(r.Properties().pixelWidth); }},
    {"pixelHeight", nullptr, nullptr, [](Raster r) { return Number(r.Properties().pixelHeight); }},
    {"unit", nullptr, nullptr, [](Raster r) { return ToUtf8(r.unit); }},
    {"bigTiff", nullptr, nullptr, [](Raster r) { return Bool(r.file->bigTiff); }},
    {"compression", nullptr, nullptr, [](Raster r) { return ToUtf8(r.Properties().compression); }},
    {"overviews", nullptr, nullptr, [](Raster r) { return Whole(r.Properties().overviews); }},
    {"nodata", nullptr, nullptr,
     [](Raster r) {
         const auto& nodata = FirstBand(r).nodata;
         return nodata ? fmt::format("{}", *nodata) : std::string();
     }},
    {"rasterKind", nullptr, nullptr, [](Raster r) { return Whole(r.Properties().rasterKind); }}};

std::string Value(const Column& column, const FileReport& report) {
    if (column.ofFile != nullptr) {
        return column.ofFile(report);
    }
    if (report.las && column.ofLas != nullptr) {
        return column.ofLas(*report.las->file);
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
