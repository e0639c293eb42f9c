#include "las/LasPageTasks.h"

#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"

namespace orvex {

namespace {

constexpr std::size_t kMostFailuresShown = 10;

LasInspection FailedInspection(const std::wstring& path, const std::wstring& message) {
    LasInspection inspection;
    inspection.path = path;
    inspection.summary = message;
    inspection.crs = DescribeCrs({});
    return inspection;
}

}  // namespace

const std::vector<std::wstring>& LasExtensions() {
    static const std::vector<std::wstring> extensions{L".LAS", L".LAZ"};
    return extensions;
}

OpenFilesRequest LasOpenFilesRequest() {
    OpenFilesRequest request;
    request.filters = {{L"LAS Files (*.las)", L"*.las"}, {L"LAZ Files (*.laz)", L"*.laz"}};
    return request;
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
    prompt.text = Text(40671_lsid) + L"\n";
    for (std::size_t i = 0; i < failures.size() && i < kMostFailuresShown; ++i) {
        prompt.text += L"\n" + failures[i].path + L": " + failures[i].cause;
    }
    if (failures.size() > kMostFailuresShown) {
        prompt.text += L"\n" + FormatText(Text(40672_lsid), {failures.size() - kMostFailuresShown});
    }
    return prompt;
}

}  // namespace orvex
