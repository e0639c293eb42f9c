#include <vector>

#include "host/inspect/ReportWriter.h"
#include "report/ReportColumns.h"
#include "support/FileTableCsv.h"

namespace orvex {
namespace {

std::vector<std::string_view> ColumnNames() {
    std::vector<std::string_view> names;
    for (const ReportColumn& column : ReportColumns()) {
        names.emplace_back(column.Look().name);
    }
    return names;
}

class CsvReportWriter final : public ReportWriter {
  public:
    explicit CsvReportWriter(std::ostream& out) : table_(out, ColumnNames()) {}

    void Write(const FileReport& report) override {
        table_.BeginFile(
            {report.path, report.kind, report.loadable, report.summary, FindingLines(report.findings)});
        for (const ReportColumn& column : ReportColumns()) {
            table_.Cell(column.ExactText(report));
        }
        table_.EndFile();
    }

    void Finish() override {}

  private:
    FileTableCsv table_;
};

}  // namespace

std::unique_ptr<ReportWriter> MakeCsvReportWriter(std::ostream& out) {
    return std::make_unique<CsvReportWriter>(out);
}

}  // namespace orvex
