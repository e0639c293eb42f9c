#pragma once
#include <algorithm>
#include <string>

#include "support/Finding.h"

namespace orvex {

/// How a row stands, worst last; each state has an image in the dialog's list.
enum class LoadFlag { Good, Findings, NotLoadable };

/// Index of the state's image in the dialog's image list.
int LoadFlagImage(LoadFlag flag);

/// The state of a file with these findings (a range of Finding, or of what is derived from it). A mere note
/// leaves a file good.
template <typename Findings>
LoadFlag LoadFlagFor(bool loadable, const Findings& findings) {
    if (!loadable) {
        return LoadFlag::NotLoadable;
    }
    const bool odd = std::any_of(findings.begin(), findings.end(),
                                 [](const Finding& f) { return f.severity != FindingSeverity::Note; });
    return odd ? LoadFlag::Findings : LoadFlag::Good;
}

/// All findings, one a line.
template <typename Findings>
std::wstring FindingLines(const Findings& findings) {
    std::wstring text;
    for (const Finding& finding : findings) {
        text += (text.empty() ? L"" : L"\n") + finding.text;
    }
    return text;
}

}  // namespace orvex
