#include "dialog/grid/GridText.h"

namespace orvex {
namespace {

bool BreaksLine(wchar_t c) {
    return c == L'\n' || c == L'\r' || c == L'\t' || c == L'\u2028' || c == L'\u2029';
}

template <class CellOf>
void AppendLine(std::wstring& out, const std::vector<int>& columns, const CellOf& cellOf) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) {
            out.push_back(L'\t');
        }
        out += OnOneLine(cellOf(columns[i]));
    }
    out.push_back(L'\n');
}

}  // namespace

std::wstring TabSeparated(const GridModel& model, const std::vector<int>& rows,
                          const std::vector<int>& columns, bool withHeaders) {
    std::wstring out;
    if (withHeaders) {
        AppendLine(out, columns, [&model](int column) { return model.Heading(column); });
    }
    for (const int row : rows) {
        const std::size_t record = model.RecordOfRow(row);
        AppendLine(out, columns, [&model, record](int column) { return model.CellText(record, column); });
    }
    return out;
}

std::wstring OnOneLine(std::wstring text) {
    std::size_t kept = 0;
    bool inBreak = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (BreaksLine(text[i])) {
            while (!inBreak && kept > 0 && text[kept - 1] == L' ') {
                --kept;
            }
            inBreak = true;
            continue;
        }
        if (inBreak && text[i] == L' ') {
            continue;
        }
        if (inBreak && kept > 0) {
            text[kept++] = L' ';
        }
        inBreak = false;
        text[kept++] = text[i];
    }
    text.resize(kept);
    return text;
}

}  // namespace orvex
