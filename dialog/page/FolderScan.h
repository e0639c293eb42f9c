#pragma once
// Finding the files that a page can list: in folders, and among what was dropped.
#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "support/Text.h"
#include "support/UserPrompts.h"

namespace Kst {
class ProgressIf;
}

namespace orvex {

struct ScanRequest {
    std::vector<std::wstring> paths;       ///< folders and files
    std::vector<std::wstring> extensions;  ///< upper-cased, with their dot: ".LAS"; or names: "HDR.ADF"
    bool recursive = true;                 ///< subfolders too
    /// Of the files that folders are searched for, where they are others than those of `extensions`, which
    /// then hold for files that are named only; empty: the same.
    std::vector<std::wstring> folderExtensions = {};
};

struct ScanResult {
    /// Full paths. Files that were named come in the order given; those of a folder in natural order.
    std::vector<std::wstring> files = {};
    std::vector<std::wstring> unreadable = {};  ///< folders that could not be listed, or not to their end
    std::vector<std::wstring> ignored = {};     ///< files that were named but have another extension
    std::vector<std::wstring> others = {};  ///< in folders: files of another kind that the component reads
    bool stopped = false;                   ///< the user stopped it; `files` is what was found until then
};

/// Searches on the thread that calls. Links to folders are followed, each folder is listed once however it is
/// reached. Throws nothing but bad_alloc.
ScanResult ScanPaths(const ScanRequest& request, const std::stop_token& stop);

/// Searches on a worker thread while the window stays alive; Escape stops it. The caller opens the
/// DialogProgress::Run. `progressText` is shown while it lasts.
ScanResult ScanPathsWithProgress(ScanRequest request, const std::wstring& progressText,
                                 Kst::ProgressIf& progress);

/// What a page says of a search.
struct ScanTexts {
    StringId caption = text::kAddFolderCaption;
    StringId ignored = text::kOthersLeftOut;  ///< files of another kind were named; one %u: how many
    StringId nothingFound = text::kFolderEmpty;
    PromptIcon nothingFoundIcon = PromptIcon::Information;
};

/// The message after a search: folders that could not be read, files of another kind among those named, or
/// nothing found, unless files are offered to other pages. Nullopt when all is as expected.
std::optional<Prompt> ScanPrompt(const ScanResult& found, const ScanTexts& texts, bool isOffering = false);

}  // namespace orvex
