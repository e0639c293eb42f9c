#pragma once
#include <functional>
#include <string>
#include <vector>

#include "dialog/details/DetailsTab.h"
#include "dialog/page/FileListControls.h"
#include "dialog/page/FixedText.h"
#include "dialog/page/ScanPrompt.h"
#include "support/FilePickers.h"
#include "support/HelpViewer.h"

namespace orvex {

/// What differs between the file pages of the dialog. Texts that are the same on all of them have their
/// values here already.
struct FileListPageDescription {
    struct Button {
        StringId caption;
        StringId tooltip;
    };

    FileListControls controls;
    const char* splitterName = "";       ///< object name of the splitter between grid and details
    const wchar_t* paneStateName = L"";  ///< under which the details pane's state is stored
    HelpTopic helpTopic = HelpTopic::LasFiles;

    StringId filesCaption = {};  ///< above the grid
    StringId emptyText = {};     ///< in the empty grid
    Button addFiles = {text::kAddFiles, {}};
    Button addFolder = {text::kAddFolder, {}};
    Button remove = {text::kRemove, text::kRemoveTooltip};
    Button clear = {text::kClear, text::kClearTooltip};
    StringId detailColumnsTooltip = text::kDetailColumnsTooltip;
    StringId selectAllTooltip = text::kSelectAllTooltip;
    StringId refreshTooltip = text::kRefreshTooltip;
    StringId helpTooltip = text::kHelpTooltip;

    /// What the picker is asked for, at each press of the button.
    std::function<OpenFilesRequest()> openFiles;
    FixedText tooManyFiles = {text::kLasTooManySelected};  ///< the names do not fit the picker's buffer
    FixedText noMemory = {text::kPickerOutOfMemory};       ///< for that buffer
    FixedText pickFailed = {};                             ///< for another reason; empty: nothing is said
    StringId pickCaption = text::kPickerCaption;

    StringId folderTitle = text::kFolderTitle;
    FixedText folderQuestion = {};  ///< whether subfolders are to be searched too
    StringId folderCaption = text::kAddFolderCaption;
    StringId scanProgress = text::kFolderSearchProgress;
    ScanTexts scanTexts = {};
    /// Of files that are named (dropped, or given by the host), upper-cased with their dot.
    std::vector<std::wstring> extensions;
    /// Of files that a folder is searched for; empty: the same.
    std::vector<std::wstring> folderExtensions;

    bool fitsColumns = true;  ///< columns follow what is added; else they keep the widths of their table
    std::vector<DetailsTab> detailsTabs;
    StringId nothingSelected = text::kDetailsNoSelection;  ///< in the first tab
};

}  // namespace orvex
