#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <ostream>

#include "host/inspect/ReportWriter.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

namespace {

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

bool IsGeographic(const FileReport& report) {
    return report.crs && report.crs->isGeographic;
}

std::wstring Corner(const FileReport& report, std::size_t index) {
    const auto& extent = report.raster->properties.extent;
    const int digits = IsGeographic(report) ? 8 : 3;  // about a millimeter
    return extent ? FromUtf8(fmt::format("{:.{}f} {:.{}f}", (*extent)[index], digits, (*extent)[index + 1],
                                         digits))
                  : std::wstring();
}

/// In the unit that the CRS counts in.
std::wstring PixelSize(const FileReport& report) {
    const RasterProperties& properties = report.raster->properties;
    if (properties.pixelWidth <= 0) {
        return {};
    }
    return FromUtf8(fmt::format("{:.8g} x {:.8g} ", properties.pixelWidth, properties.pixelHeight)) +
           (IsGeographic(report) ? report.crs->angularUnits : report.raster->unit);
}

/// One line: control characters would break the table, or drive the terminal.
std::wstring OneLine(std::wstring text) {
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c < L' ' || (c >= 0x7F && c < 0xA0); }, L' ');
    return text;
}

using Report = const FileReport&;
using Las = const LASFile&;

/// Cells for every file, or for LAS files and rasters; null leaves the cell empty.
struct Column {
    StringId heading;
    bool isRightAligned = false;
    std::wstring (*ofFile)(Report) = nullptr;
    std::wstring (*ofLas)(Las) = nullptr;
    std::wstring (*ofRaster)(Report) = nullptr;
};

constexpr std::size_t kFile = 0;
constexpr Column kColumns[] = {
    {text::kInspectFile, false, [](Report r) { return r.path; }},
    {text::kFileType, false, nullptr, nullptr, [](Report r) { return r.raster->properties.driver; }},
    {text::kImageSize, true, nullptr, nullptr,
     [](Report r) {
         return FormatText(L"%d x %d", {r.raster->properties.width, r.raster->properties.height});
     }},
    {text::kBandCount, true, nullptr, nullptr,
     [](Report r) { return std::to_wstring(r.raster->properties.bands); }},
    {text::kInspectDataType, false, nullptr, nullptr, [](Report r) { return FirstBand(*r.raster).dataType; }},
    {text::kPixelSize, false, nullptr, nullptr, PixelSize},
    {text::kInspectVersion, false, nullptr,
     [](Las l) { return FromUtf8(LasVersion(l)) + (l.Header().IsCompressed() ? L" LAZ" : L""); }},
    {text::kInspectFormat, true, nullptr, [](Las l) { return std::to_wstring(l.PointFormat()); }},
    {text::kInspectPoints, true, nullptr, [](Las l) { return Grouped(l.GetPointCount()); }},
    {text::kInspectMinimum, false, nullptr, [](Las l) { return Point(l.Minimum()); },
     [](Report r) { return Corner(r, 0); }},
    {text::kInspectMaximum, false, nullptr, [](Las l) { return Point(l.Maximum()); },
     [](Report r) { return Corner(r, 2); }},
    {text::kInspectCrs, false, [](Report r) { return r.crs ? r.crs->name : std::wstring(); }},
    {text::kInspectSummary, false, [](Report r) { return r.summary; }}};
constexpr std::size_t kColumnCount = std::size(kColumns);
constexpr std::size_t kSummary = kColumnCount - 1;
using Row = std::array<std::wstring, kColumnCount>;
using Widths = std::array<std::size_t, kColumnCount>;

std::wstring Value(const Column& column, const FileReport& report) {
    if (column.ofFile != nullptr) {
        return column.ofFile(report);
    }
    if (report.las && column.ofLas != nullptr) {
        return column.ofLas(*report.las->file);
    }
    return report.raster && column.ofRaster != nullptr ? column.ofRaster(report) : std::wstring();
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
            row[column] = Fitted(OneLine(Value(kColumns[column], report)), column);
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
            if (widths[column] == 0 && kColumns[column].ofFile == nullptr) {
                continue;  // nothing to say of any of these files
            }
            headings[column] = Text(kColumns[column].heading);
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
            line += kColumns[column].isRightAligned ? blanks + row[column] : row[column] + blanks;
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
