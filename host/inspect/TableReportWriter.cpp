#include <algorithm>
#include <array>
#include <iterator>
#include <ostream>

#include "host/inspect/ReportWriter.h"
#include "report/ReportColumns.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kWidestCell = 60;  ///< characters; the last column is as wide as it is

// The table is for people: it prints some of the pages' columns, between the file and what is wrong with it.
constexpr const char* kPageColumns[] = {"timeUtc",     "longitude", "latitude",   "altitude",    "yaw",
                                        "fileType",    "imageSize", "bands",      "bitsPerBand", "pixelSizes",
                                        "geometry",    "features",  "linearUnit", "version",     "compressed",
                                        "pointFormat", "points",    "minimumX",   "minimumY",    "minimumZ",
                                        "maximumX",    "maximumY",  "maximumZ",   "crsName"};
constexpr std::size_t kFile = 0;
constexpr std::size_t kColumnCount = std::size(kPageColumns) + 2;
constexpr std::size_t kSummary = kColumnCount - 1;
using Row = std::array<std::wstring, kColumnCount>;
using Widths = std::array<std::size_t, kColumnCount>;

const GridColumn& PageColumn(std::size_t column) {
    return ReportColumnNamed(kPageColumns[column - 1]).Look();
}

StringId Heading(std::size_t column) {
    if (column == kFile) {
        return text::kInspectFile;
    }
    return column == kSummary ? text::kInspectSummary : PageColumn(column).caption;
}

bool IsRightAligned(std::size_t column) {
    return column != kFile && column != kSummary && PageColumn(column).kind == CellKind::Number;
}

std::wstring Value(std::size_t column, const FileReport& report) {
    if (column == kFile) {
        return report.path;
    }
    return column == kSummary ? report.summary : ReportColumnNamed(kPageColumns[column - 1]).Text(report);
}

/// The end of a path says more than its start, the start of everything else more than its end.
std::wstring Fitted(const std::wstring& text, std::size_t column) {
    if (column == kSummary || text.size() <= kWidestCell) {
        return text;
    }
    return column == kFile ? L"\u2026" + text.substr(WholeLength(text, text.size() - kWidestCell + 1))
                           : text.substr(0, WholeLength(text, kWidestCell - 1)) + L"\u2026";
}

class TableReportWriter final : public ReportWriter {
  public:
    explicit TableReportWriter(std::ostream& out) : out_(out) {}

    void Write(const FileReport& report) override {
        Row row;
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            row[column] = Fitted(WithoutControls(Value(column, report)), column);
        }
        rows_.push_back(std::move(row));
    }

    void Finish() override {
        if (rows_.empty()) {
            return;
        }
        Row headings;
        Row rules;
        Widths widths{};
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            widths[column] = Widest(column);
            if (widths[column] == 0 && column != kFile && column != kSummary) {
                continue;  // empty for all of these files
            }
            headings[column] = Text(Heading(column));
            const std::size_t captionWidth = CountCharacters(headings[column]);
            widths[column] = std::max(widths[column], captionWidth);
            rules[column].assign(column == kSummary ? captionWidth : widths[column], L'-');
        }
        Line(headings, widths);
        Line(rules, widths);
        for (const Row& row : rows_) {
            Line(row, widths);
        }
    }

  private:
    /// Characters of a column's longest cell.
    std::size_t Widest(std::size_t column) const {
        std::size_t widest = 0;
        for (const Row& row : rows_) {
            widest = std::max(widest, CountCharacters(row[column]));
        }
        return widest;
    }

    void Line(const Row& row, const Widths& widths) {
        std::wstring line;
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            if (widths[column] == 0) {
                continue;
            }
            const std::wstring blanks(widths[column] - CountCharacters(row[column]), L' ');
            line += IsRightAligned(column) ? blanks + row[column] : row[column] + blanks;
            line += L"  ";
        }
        line.erase(line.find_last_not_of(L' ') + 1);
        out_ << ValidUtf8(ToUtf8(line)) << '\n';
    }

    std::ostream& out_;
    std::vector<Row> rows_;
};

}  // namespace

std::unique_ptr<ReportWriter> MakeTableReportWriter(std::ostream& out) {
    return std::make_unique<TableReportWriter>(out);
}

std::unique_ptr<ReportWriter> MakeReportWriter(ReportFormat format, std::ostream& out) {
    switch (format) {
        case ReportFormat::Json:
            return MakeJsonReportWriter(out);
        case ReportFormat::Ndjson:
            return MakeNdjsonReportWriter(out);
        case ReportFormat::Csv:
            return MakeCsvReportWriter(out);
        case ReportFormat::Table:
            break;
    }
    return MakeTableReportWriter(out);
}

}  // namespace orvex
