#include "las/LasRow.h"

#include <algorithm>

namespace orvex {

LasLoadFlag LoadFlagOf(const LasRow& row) {
    if (row.inspection.file == nullptr) {
        return LasLoadFlag::NotLoadable;
    }
    const bool odd = std::any_of(row.inspection.findings.begin(), row.inspection.findings.end(),
                                 [](const LasFinding& f) { return f.severity != LasSeverity::Note; });
    return odd ? LasLoadFlag::Findings : LasLoadFlag::Good;
}

int LoadFlagImage(LasLoadFlag flag) {
    switch (flag) {
        case LasLoadFlag::Good:
            return 3;
        case LasLoadFlag::Findings:
            return 5;
        case LasLoadFlag::NotLoadable:
            return 6;
    }
    return -1;
}

std::wstring FindingsText(const LasRow& row) {
    if (row.inspection.findings.empty()) {
        return row.inspection.file == nullptr ? row.inspection.summary : std::wstring();
    }
    std::wstring text;
    for (const LasFinding& finding : row.inspection.findings) {
        text += (text.empty() ? L"" : L"\n") + finding.text;
    }
    return text;
}

}  // namespace orvex
