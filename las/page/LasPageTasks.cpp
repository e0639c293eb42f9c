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
    page.filesCaption = 13466_lsid;
    page.emptyText = 40674_lsid;
    page.addFiles = {13462_lsid, 13483_lsid};
    page.addFolder = {13463_lsid, 41015_lsid};
    page.openFiles = LasOpenFilesRequest;
    page.pickFailed = {10052_lsid};
    page.folderQuestion = {13556_lsid};
    page.scanTexts.ignored = 41051_lsid;
    page.scanTexts.nothingFound = 41052_lsid;
    page.extensions = NamedExtensions(DataKind::Las);
    page.detailsTabs = {{"detailsOverview", 40631_lsid, Html},
                        {"detailsCrs", 40632_lsid, Html},
                        {"detailsRecords", 40633_lsid, PlainText}};
    page.nothingSelected = 40634_lsid;
    return page;
}

FileAdder<LasInspection> MakeLasFileAdder() {
    AddingDescription description;
    description.progressText = 13662_lsid;
    description.confirmText = 13656_lsid;
    description.confirmCaption = 13657_lsid;
    description.buddy = OrvexUtilities::GetLAZBuddyPath;
    return {std::move(description), InspectLasFile, FailedInspection};
}

FileAdder<LasInspection> MakeLasFileRefresher() {
    AddingDescription description;
    description.progressText = 40676_lsid;
    return {std::move(description), InspectLasFile, FailedInspection};
}

Prompt OpenFailuresPrompt(const std::vector<LasFileFailure>& failures) {
    Prompt prompt;
    prompt.caption = Text(40673_lsid);
    prompt.icon = PromptIcon::Error;
    prompt.text = Text(40671_lsid) + L"\n" + PromptLines(failures, FailureText);
    return prompt;
}

}  // namespace orvex
