#pragma once
// Input and output of GetOpenFileNameW, without the dialog, and what every file dialog shares.
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "support/FilePickers.h"
#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex {

/// The filters in the dialog's form: caption and patterns in turn, each ended by a zero, and one more zero at
/// the end. Empty if there are no filters. A filter without patterns is left out: its empty text would end
/// the list.
std::wstring OpenFileFilterText(const std::vector<FileFilter>& filters);

/// Full paths of a selection. `buffer` is the dialog's: one full path, or a folder and the names in it, each
/// ended by a zero, and one more zero at the end. A name that is a full path (chosen from search results or a
/// library) is kept. A buffer without the last zero is read to its end.
std::vector<std::wstring> ParseOpenFileSelection(std::wstring_view buffer);

/// Meaning of the dialog's extended error (CommDlgExtendedError); 0 is a cancelled dialog.
PickOutcome OutcomeOfOpenFileError(std::uint32_t extendedError);

/// Characters that a selection takes in the dialog's buffer: its folder and each name, each with one
/// separator.
std::size_t SelectionCharacters(const std::vector<std::wstring>& paths);

/// Runs a file dialog. OutOfMemory if memory runs out; Failed, and a line in the log, for anything else that
/// it throws.
template <typename Pick>
PickedFiles GuardedPick(Pick&& pick) {
    try {
        return pick();
    } catch (const std::bad_alloc&) {
        return {PickOutcome::OutOfMemory, {}};
    } catch (...) {
        LogWarning(L"The file dialog failed: " + CurrentExceptionText());
        return {PickOutcome::Failed, {}};
    }
}

}  // namespace orvex
