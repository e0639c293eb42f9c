#include "support/FileTableCsv.h"

#include <ostream>

#include "support/Text.h"

namespace orvex {
namespace {

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

}  // namespace

bool IsInFileTable(const GridColumn& column) {
    const std::string_view name = column.name;
    return !column.hidden && column.kind != CellKind::Flag && name != "state" && name != "summary";
}

FileTableCsv::FileTableCsv(std::ostream& out, std::span<const std::string_view> columns) : out_(out) {
    for (const wchar_t* name : {L"path", L"kind", L"loadable", L"summary", L"findings"}) {
        Cell(name);
    }
    for (const std::string_view name : columns) {
        Cell(FromUtf8(name));
    }
    EndFile();
}

void FileTableCsv::BeginFile(const FileInTable& file) {
    Cell(file.path);
    Cell(FromUtf8(file.kind));
    Cell(file.loadable ? L"true" : L"false");
    Cell(file.summary);
    Cell(file.findings);
}

void FileTableCsv::Cell(std::wstring_view text) {
    out_ << (isFirst_ ? "" : ",") << CsvField(ValidUtf8(ToUtf8(WithoutControls(std::wstring(text), L"\n"))));
    isFirst_ = false;
}

void FileTableCsv::EndFile() {
    out_ << "\r\n";
    isFirst_ = true;
}

}  // namespace orvex
