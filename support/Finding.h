#pragma once
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "support/Format.h"
#include "support/ImageIndex.h"
#include "support/Text.h"

namespace orvex {

enum class FindingSeverity { Note, Warning, Error };

/// Part of a file that a finding is about, as far as it is known.
struct FindingPlace {
    /// JSON pointer to what the finding is about, in the report of the file: "/las/scale". Empty: none.
    const char* member = "";
    /// Extension, in lower case, of the file beside it that the finding is about; empty: the file itself.
    const char* sidecar = "";
    std::optional<std::uint64_t> offset = {};  ///< bytes from the start of the file to the field or data
    std::optional<std::size_t> index = {};     ///< element of the list that `member` is
};

/// A row in a table of findings.
struct FindingKind {
    const char* code;  ///< for scripts: lower-case words joined by hyphens, never changed
    FindingSeverity severity;
    StringId text;  ///< a sentence, with conversions as FormatText takes them
    FindingPlace where = {};
};

/// One finding of a file's validation.
struct Finding {
    FindingSeverity severity;
    std::wstring text;      ///< a sentence in plain words
    const char* code = "";  ///< that of its FindingKind
    FindingPlace where = {};
};

inline Finding MakeFinding(const FindingKind& kind, std::initializer_list<FormatArg> arguments = {}) {
    return {kind.severity, FormatText(Text(kind.text), arguments), kind.code, kind.where};
}

/// A finding that has a text of its own instead of that of its kind.
inline Finding FindingInWords(const FindingKind& kind, std::wstring text) {
    return {kind.severity, std::move(text), kind.code, kind.where};
}

/// The same finding, with a place in the file.
inline Finding FoundAt(std::uint64_t offset, Finding finding) {
    finding.where.offset = offset;
    return finding;
}

/// State of a row, worst last. Awaited: not read yet. Noted: nothing but notes is known of the file.
/// InProject: nor anything but notes, and the project has the file already.
enum class LoadFlag { Awaited, Good, Noted, InProject, Findings, NotLoadable };

/// Image of a state, in the dialog's list; -1 for none.
inline int LoadFlagImage(LoadFlag flag) {
    constexpr int kImages[] = {-1,         kImageLoadable, kImageInformation,
                               kImageLink, kImageWarning,  kImageNotLoadable};
    return kImages[static_cast<int>(flag)];
}

/// A state in a word.
inline std::wstring LoadFlagText(LoadFlag flag) {
    constexpr StringId kTexts[] = {text::kStatusWaiting,   text::kInspectionOk,  text::kStatusNote,
                                   text::kStatusInProject, text::kStatusWarning, text::kStatusError};
    return Text(kTexts[static_cast<int>(flag)]);
}

/// The number in a load-flag cell: 0 for a file that cannot be loaded, so that it reads as a flag; sorting
/// ascending puts the worst first.
inline double LoadFlagNumber(LoadFlag flag) {
    return static_cast<double>(LoadFlag::NotLoadable) - static_cast<double>(flag);
}

/// State of a file with these findings (of Finding, or of a type derived from it), worst first. `place`: of
/// its row.
template <typename Findings, typename Place>
LoadFlag LoadFlagFor(bool loadable, const Findings& findings, const Place& place) {
    if (place.isAwaited) {
        return LoadFlag::Awaited;
    }
    if (!loadable) {
        return LoadFlag::NotLoadable;
    }
    if (!findings.empty() && findings.front().severity > FindingSeverity::Note) {
        return LoadFlag::Findings;
    }
    if (place.inProject) {
        return LoadFlag::InProject;
    }
    return findings.empty() ? LoadFlag::Good : LoadFlag::Noted;
}

/// One line for a file that could be read: the first of its findings, or "OK".
template <typename Findings>
std::wstring SummaryOf(const Findings& findings) {
    return findings.empty() ? Text(text::kInspectionOk) : findings.front().text;
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

/// The state of a row (with `summary`, `findings` and `place`) in words: first what its icon shows.
template <typename Row>
std::wstring StateText(const Row& row) {
    if (!row.place.inProject) {
        return row.summary;
    }
    const std::wstring inProject = Text(text::kFileInProject);
    if (LoadFlagOf(row) != LoadFlag::InProject) {
        return row.summary + L" " + inProject;
    }
    return row.findings.empty() ? inProject : inProject + L" " + row.summary;
}

/// Everything that is known of a row, one a line.
template <typename Row>
std::wstring StateLines(const Row& row) {
    std::wstring lines = FindingLines(row.findings);
    if (row.place.inProject) {
        lines += lines.empty() ? L"" : L"\n";
        lines += Text(text::kFileInProject);
    }
    return lines;
}

}  // namespace orvex
