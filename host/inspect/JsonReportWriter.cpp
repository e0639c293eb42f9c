#include <nlohmann/json.hpp>
#include <ostream>

#include "host/inspect/ReportWriter.h"
#include "report/FileReportJson.h"

namespace orvex {
namespace {

/// An array with one object per file; each is written and forgotten at once.
class JsonReportWriter final : public ReportWriter {
  public:
    explicit JsonReportWriter(std::ostream& out) : out_(out) { out_ << '['; }

    void Write(const FileReport& report) override {
        std::string text = isFirst_ ? "\n  " : ",\n  ";
        AppendJson(text, FileReportJson(report), 1);
        out_ << text;
        isFirst_ = false;
    }

    void Finish() override { out_ << (isFirst_ ? "]\n" : "\n]\n"); }

  private:
    std::ostream& out_;
    bool isFirst_ = true;
};

/// One object per line.
class NdjsonReportWriter final : public ReportWriter {
  public:
    explicit NdjsonReportWriter(std::ostream& out) : out_(out) {}

    void Write(const FileReport& report) override {
        std::string text;
        AppendJson(text, FileReportJson(report), std::nullopt);
        out_ << text << '\n' << std::flush;
    }

    void Finish() override {}

  private:
    std::ostream& out_;
};

}  // namespace

std::unique_ptr<ReportWriter> MakeJsonReportWriter(std::ostream& out) {
    return std::make_unique<JsonReportWriter>(out);
}

std::unique_ptr<ReportWriter> MakeNdjsonReportWriter(std::ostream& out) {
    return std::make_unique<NdjsonReportWriter>(out);
}

}  // namespace orvex
