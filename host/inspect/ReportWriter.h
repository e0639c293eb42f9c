#pragma once
#include <iosfwd>
#include <memory>

#include "report/FileReport.h"

namespace orvex {

enum class ReportFormat { Table, Csv, Json, Ndjson };

/// Prints reports: Write once per file, in the order of the output, then Finish once. Finish also completes
/// the output of a run that was stopped.
class ReportWriter {
  public:
    virtual ~ReportWriter() = default;
    virtual void Write(const FileReport& report) = 0;
    virtual void Finish() = 0;
};

/// `out` must outlive the writer.
std::unique_ptr<ReportWriter> MakeReportWriter(ReportFormat format, std::ostream& out);

std::unique_ptr<ReportWriter> MakeJsonReportWriter(std::ostream& out);
std::unique_ptr<ReportWriter> MakeNdjsonReportWriter(std::ostream& out);
std::unique_ptr<ReportWriter> MakeCsvReportWriter(std::ostream& out);
std::unique_ptr<ReportWriter> MakeTableReportWriter(std::ostream& out);

}  // namespace orvex
