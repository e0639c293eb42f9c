#pragma once
// What goes into and comes out of GetOpenFileNameW, without the dialog.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/FilePickers.h"

namespace orvex {

/// The filters as the dialog takes them: caption and patterns in turn, each ended by a zero, all ended by one
/// more. Empty when there are no filters. A filter without patterns is left out: its empty text would end the
/// list.
std::wstring OpenFileFilterText(const std::vector<FileFilter>& filters);

/// The full paths of a selection. `buffer` is what the dialog filled: one full path, or a folder and names in
/// it, each ended by a zero, all ended by one more. A name that is a full path itself (chosen from search
/// results or a library) stays as it is. A buffer without the last zero is read to its end.
std::vector<std::wstring> ParseOpenFileSelection(std::wstring_view buffer);

/// What the dialog's extended error (CommDlgExtendedError) means; 0 is a cancelled dialog.
PickOutcome OutcomeOfOpenFileError(std::uint32_t extendedError);

}  // namespace orvex
