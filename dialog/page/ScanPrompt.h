#pragma once
#include <optional>

#include "dialog/page/FolderScan.h"
#include "support/Text.h"
#include "support/UserPrompts.h"

namespace orvex {

/// What a page says of a search.
struct ScanTexts {
    StringId caption = text::kAddFolderCaption;
    StringId ignored = text::kOthersLeftOut;  ///< files of another kind were named; one %u: how many
    StringId nothingFound = text::kFolderEmpty;
    PromptIcon nothingFoundIcon = PromptIcon::Information;
};

/// What the user is to know of a search: folders that could not be read, files of another kind among those
/// named, or that there was nothing. None when all is as expected.
std::optional<Prompt> ScanPrompt(const ScanResult& found, const ScanTexts& texts);

}  // namespace orvex
