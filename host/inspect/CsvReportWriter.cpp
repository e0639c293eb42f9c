#include <ostream>

#include "host/inspect/ReportColumns.h"
#include "host/inspect/ReportWriter.h"
#include "support/Text.h"

namespace orvex {

namespace {

std::string Findings(const FileReport& report) {
    return ToUtf8(FindingLines(report.findings));
}

/// What every file has, before the columns of the pages.
struct FileColumn {
    const char* name;
    std::string (*text)(const FileReport& report);
};

constexpr FileColumn kFileColumns[] = {
    {"path", [](const FileReport& report) { return ToUtf8(report.path); }},
    {"kind", [](const FileReport& report) { return report.kind; }},
    {"loadable", [](const FileReport& report) { return std::string(report.loadable ? "true" : "false"); }},
    {"summary", [](const FileReport& report) { return ToUtf8(report.summary); }},
    {"findings", Findings},
};

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
        for (const FileColumn& column : kFileColumns) {
            Field(column.name);
        }
        for (const ReportColumn& column : ReportColumns()) {
            Field(column.Look().name);
        }
        EndLine();
    }

    void Write(const FileReport& report) override {
        for (const FileColumn& column : kFileColumns) {
            Field(column.text(report));
        }
        for (const ReportColumn& column : ReportColumns()) {
            Field(ToUtf8(column.ExactText(report)));
        }
        EndLine();
    }

    void Finish() override {}

  private:
    void Field(std::string_view text) {
        out_ << (first_ ? "" : ",") << CsvField(ValidUtf8(ToUtf8(WithoutControls(FromUtf8(text), L"\n"))));
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
