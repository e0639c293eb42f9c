#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

/// Relation of a QVR companion to its LAS or LAZ file.
enum class CompanionState {
    None,        ///< there is no companion
    Fresh,       ///< built from the file as it is
    Stale,       ///< built from another state of the file, or from another file
    Unreadable,  ///< no QVR file, one of another version, or a damaged one
    OfOther,     ///< fresh for the file of the same name in the other format, a LAS beside a LAZ file
};

struct CompanionFacts {
    CompanionState state = CompanionState::None;
    /// Stale: what differs, for "...: %s."; Unreadable, OfOther: the reason, a sentence; else empty.
    std::wstring reason;
};

/// State of a file's companion by its header and index record; its entries and points are not read. Never
/// throws; safe from any thread. Fresh: size, number of points and header are those of the file that it was
/// built from, and the time of the last change is, give or take two seconds, which FAT and archives round to.
CompanionFacts CheckCompanion(const std::wstring& source);
/// The same; a fresh companion's whole index is read as well, still no point, and it is Unreadable if that is
/// damaged.
CompanionFacts ExamineCompanion(const std::wstring& source);

/// LAS and LAZ files beside a companion that it may be of.
std::vector<std::wstring> SourcesBeside(const std::wstring& companion);

}  // namespace orvex
