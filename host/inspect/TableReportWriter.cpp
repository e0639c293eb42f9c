#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>

#include "host/inspect/JsonWriter.h"
#include "host/inspect/ReportWriter.h"
#include "support/Text.h"

namespace orvex {

namespace {

enum Column : std::size_t {
    kFile,
    kVersion,
    kFormat,
    kPoints,
    kMinimum,
    kMaximum,
    kCrs,
    kSummary,
    kColumnCount
};
using Row = std::array<std::wstring, kColumnCount>;

constexpr std::array<StringId, kColumnCount> kHeadings = {40800_lsid, 40801_lsid, 40802_lsid, 40803_lsid,
                                                          40804_lsid, 40805_lsid, 40806_lsid, 40807_lsid};
constexpr std::array<bool, kColumnCount> kRightAligned = {false, false, true,  true,
                                                          false, false, false, false};
constexpr std::size_t kWidestCell = 60;  ///< characters; the last column is as wide as it is

/// 12345678 as "12 345 678": blanks mean the same in every language.
std::wstring Grouped(std::uint64_t number) {
    std::wstring digits = std::to_wstring(number);
    for (std::size_t i = digits.size(); i > 3;) {
        i -= 3;
        digits.insert(i, 1, L' ');
    }
    return digits;
}

std::wstring Point(const std::array<double, 3>& values) {
    return FromUtf8(fmt::format("{:.3f} {:.3f} {:.3f}", values[0], values[1], values[2]));
}

/// One line: control characters would break the table, or drive the terminal.
std::wstring OneLine(std::wstring text) {
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c < L' ' || (c >= 0x7F && c < 0xA0); }, L' ');
    return text;
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
        row[kFile] = report.path;
        row[kSummary] = report.summary;
        if (report.las) {
            const LasReport& las = *report.las;
            row[kVersion] = FromUtf8(las.version) + (las.compressed ? L" LAZ" : L"");
            row[kFormat] = std::to_wstring(las.pointFormat);
            row[kPoints] = Grouped(las.pointCount);
            row[kMinimum] = Point(las.min);
            row[kMaximum] = Point(las.max);
        }
        if (report.crs) {
            row[kCrs] = report.crs->name;
        }
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            row[column] = Fitted(OneLine(std::move(row[column])), column);
        }
        rows_.push_back(std::move(row));
    }

    void Finish() override {
        if (rows_.empty()) {
            return;
        }
        Row headings;
        std::transform(kHeadings.begin(), kHeadings.end(), headings.begin(), Text);
        std::array<std::size_t, kColumnCount> widths{};
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            widths[column] = CountCharacters(headings[column]);
            for (const Row& row : rows_) {
                widths[column] = std::max(widths[column], CountCharacters(row[column]));
            }
        }
        Line(headings, widths);
        Row rules;
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            rules[column].assign(column == kSummary ? CountCharacters(headings[column]) : widths[column],
                                 L'-');
        }
        Line(rules, widths);
        for (const Row& row : rows_) {
            Line(row, widths);
        }
    }

  private:
    void Line(const Row& row, const std::array<std::size_t, kColumnCount>& widths) {
        std::wstring line;
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            const std::wstring blanks(widths[column] - CountCharacters(row[column]), L' ');
            line += kRightAligned[column] ? blanks + row[column] : row[column] + blanks;
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
        case ReportFormat::Csv:
            return MakeCsvReportWriter(out);
        case ReportFormat::Table:
            break;
    }
    return MakeTableReportWriter(out);
}

}  // namespace orvex
