#include "las/page/LasPageTasks.h"

#include "dialog/page/PromptLines.h"
#include "las/page/LasPageControls.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/DataKinds.h"

namespace orvex {

namespace {

LasInspection FailedInspection(const std::wstring& path, const std::wstring& message) {
    LasInspection inspection;
    inspection.path = path;
    inspection.summary = message;
    inspection.crs = DescribeCrs({});
    return inspection;
}

/// The failure's cause behind the path, unless the cause names the file itself.
std::wstring FailureText(const LasFileFailure& failure) {
    const bool isNamed = failure.cause.find(failure.path) != std::wstring::npos;
    return isNamed ? failure.cause : failure.path + L": " + failure.cause;
}

OpenFilesRequest LasOpenFilesRequest() {
    OpenFilesRequest request;
    request.filters = PickerFilters(DataKind::Las);
    return request;
}

}  // namespace

FileListPageDescription DescribeLasPage() {
    using enum DetailsTab::Kind;
    FileListPageDescription page;
    page.controls = LasListControls();
    page.splitterName = "lasSplitter";
    page.paneStateName = L"AddLASFilesDetails";
    page.helpTopic = HelpTopic::LasFiles;
    page.filesCaption = text::kLasSelectedFiles;
    page.emptyText = text::kLasEmptyGrid;
    page.addFiles = {text::kAddFiles, text::kLasAddTooltip};
    page.addFolder = {text::kAddFolder, text::kLasAddFolderTooltip};
    page.openFiles = LasOpenFilesRequest;
    page.pickFailed = {text::kPickerOutOfMemory};
    page.folderQuestion = {text::kLasSubfoldersQuestion};
    page.scanTexts.ignored = text::kLasOthersLeftOut;
    page.scanTexts.nothingFound = text::kLasFolderEmpty;
    page.extensions = NamedExtensions(DataKind::Las);
    page.detailsTabs = {{"detailsOverview", text::kDetailsOverviewTab, Html},
                        {"detailsCrs", text::kDetailsCrsTab, Html},
                        {"detailsRecords", text::kDetailsRecordsTab, PlainText}};
    page.nothingSelected = text::kLasDetailsNoSelection;
    return page;
}

FileAdder<LasInspection> MakeLasFileAdder() {
    AddingDescription description;
    description.progressText = text::kLasReadingProgress;
    description.confirmText = text::kLasManyFilesQuestion;
    description.confirmCaption = text::kLasManyFilesCaption;
    description.buddy = OrvexUtilities::GetLAZBuddyPath;
    return {std::move(description), InspectLasFile, FailedInspection};
}

FileAdder<LasInspection> MakeLasFileRefresher() {
    AddingDescription description;
    description.progressText = text::kRefreshProgress;
    return {std::move(description), InspectLasFile, FailedInspection};
}

Prompt OpenFailuresPrompt(const std::vector<LasFileFailure>& failures) {
    Prompt prompt;
    prompt.caption = Text(text::kLasOpenModeCaption);
    prompt.icon = PromptIcon::Error;
    prompt.text = Text(text::kLasOpenModeFailed) + L"\n" + PromptLines(failures, FailureText);
    return prompt;
}

}  // namespace orvex
