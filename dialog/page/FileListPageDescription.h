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
    Button addFiles = {13462_lsid, {}};
    Button addFolder = {13463_lsid, {}};
    Button remove = {13464_lsid, 13484_lsid};
    Button clear = {13465_lsid, 13485_lsid};
    StringId detailColumnsTooltip = 13478_lsid;
    StringId selectAllTooltip = 13477_lsid;
    StringId refreshTooltip = 40675_lsid;
    StringId helpTooltip = 13557_lsid;

    /// What the picker is asked for, at each press of the button.
    std::function<OpenFilesRequest()> openFiles;
    FixedText tooManyFiles = {10048_lsid};  ///< the names do not fit the picker's buffer
    FixedText noMemory = {10052_lsid};      ///< for that buffer
    FixedText pickFailed = {};              ///< for another reason; empty: nothing is said
    StringId pickCaption = 10184_lsid;

    StringId folderTitle = 18251_lsid;
    FixedText folderQuestion = {};  ///< whether subfolders are to be searched too
    StringId folderCaption = 18253_lsid;
    StringId scanProgress = 13647_lsid;
    ScanTexts scanTexts = {};
    /// Of files that are named (dropped, or given by the host), upper-cased with their dot.
    std::vector<std::wstring> extensions;
    /// Of files that a folder is searched for; empty: the same.
    std::vector<std::wstring> folderExtensions;

    bool fitsColumns = true;  ///< columns follow what is added; else they keep the widths of their table
    std::vector<DetailsTab> detailsTabs;
    StringId nothingSelected = 41063_lsid;  ///< in the first tab
};

}  // namespace orvex
