#include <fmt/format.h>

#include <cmath>
#include <ostream>

#include "host/inspect/JsonWriter.h"
#include "host/inspect/ReportWriter.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr const char* kColumns[] = {
    "path",       "kind",           "loadable",     "summary",    "findings",    "crs",
    "epsg",       "linearUnits",    "angularUnits", "version",    "pointFormat", "compressed",
    "headerSize", "offsetToPoints", "recordLength", "pointCount", "scaleX",      "scaleY",
    "scaleZ",     "offsetX",        "offsetY",      "offsetZ",    "minX",        "minY",
    "minZ",       "maxX",           "maxY",         "maxZ",       "gpsTime",     "vlrs",
    "evlrs",      "companionStatus"};
constexpr std::size_t kLasColumns = 23;  ///< from "version" on

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
        for (const char* column : kColumns) {
            Field(column);
        }
        EndLine();
    }

    void Write(const FileReport& report) override {
        Field(report.path);
        Field(report.kind);
        Field(report.loadable ? "true" : "false");
        Field(report.summary);
        std::wstring findings;
        for (const std::wstring& finding : report.findings) {
            findings += (findings.empty() ? L"" : L"\n") + finding;
        }
        Field(findings);
        const CrsDescription none;
        const CrsDescription& crs = report.crs ? *report.crs : none;
        Field(crs.name);
        Field(crs.epsg == 0 ? std::string() : fmt::format("{}", crs.epsg));
        Field(crs.linearUnits);
        Field(crs.angularUnits);
        if (report.las) {
            WriteLas(*report.las);
        } else {
            for (std::size_t i = 0; i < kLasColumns; ++i) {
                Field("");
            }
        }
        EndLine();
    }

    void Finish() override {}

  private:
    void WriteLas(const LasReport& las) {
        Field(las.version);
        Field(fmt::format("{}", las.pointFormat));
        Field(las.compressed ? "true" : "false");
        Field(fmt::format("{}", las.headerSize));
        Field(fmt::format("{}", las.offsetToPoints));
        Field(fmt::format("{}", las.pointRecordLength));
        Field(fmt::format("{}", las.pointCount));
        for (const auto* triple : {&las.scale, &las.offset, &las.min, &las.max}) {
            for (const double value : *triple) {
                Field(std::isfinite(value) ? fmt::format("{}", value) : std::string());
            }
        }
        Field(las.gpsTime);
        Field(fmt::format("{}", las.vlrs.size()));
        Field(fmt::format("{}", las.evlrs.size()));
        Field(fmt::format("{}", las.companionStatus));
    }

    void Field(std::wstring_view text) { Field(ToUtf8(text)); }
    void Field(std::string_view text) {
        out_ << (first_ ? "" : ",") << CsvField(ValidUtf8(text));
        first_ = false;
    }
    void Field(const std::string& text) { Field(std::string_view(text)); }
    void Field(const char* text) { Field(std::string_view(text)); }
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
