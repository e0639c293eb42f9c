#pragma once
#include <string>

#include "support/ImageIndex.h"

namespace orvex {

enum class FindingSeverity { Note, Warning, Error };

/// One finding of a file's validation.
struct Finding {
    FindingSeverity severity;
    std::wstring text;  ///< a sentence in plain words
};

/// State of a row, worst last.
enum class LoadFlag { Good, Findings, NotLoadable };

/// Image of a state, in the dialog's list.
inline int LoadFlagImage(LoadFlag flag) {
    constexpr ImageIndex kImages[] = {kImageLoadable, kImageWarning, kImageNotLoadable};
    return kImages[static_cast<int>(flag)];
}

/// The number in a load-flag cell: 0 for a file that cannot be loaded, so that it reads as a flag; sorting
/// ascending puts the worst first.
inline double LoadFlagNumber(LoadFlag flag) {
    return static_cast<double>(LoadFlag::NotLoadable) - static_cast<double>(flag);
}

/// State of a file with these findings (a range of Finding, or of types derived from it). Notes leave a file
/// good.
template <typename Findings>
LoadFlag LoadFlagFor(bool loadable, const Findings& findings) {
    if (!loadable) {
        return LoadFlag::NotLoadable;
    }
    for (const Finding& finding : findings) {
        if (finding.severity != FindingSeverity::Note) {
            return LoadFlag::Findings;
        }
    }
    return LoadFlag::Good;
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
