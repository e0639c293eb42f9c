#include "las/LasPageTasks.h"

#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"

namespace orvex {

namespace {

constexpr std::size_t kMostItemsShown = 10;

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

/// One line per item, and how many there are beyond those that a message box can show.
template <typename Items, typename ToText>
std::wstring PromptLines(const Items& items, ToText toText) {
    std::wstring lines;
    for (std::size_t i = 0; i < items.size() && i < kMostItemsShown; ++i) {
        lines += L"\n" + toText(items[i]);
    }
    if (items.size() > kMostItemsShown) {
        lines += L"\n" + FormatText(Text(40672_lsid), {items.size() - kMostItemsShown});
    }
    return lines;
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

std::optional<Prompt> ScanPrompt(const ScanResult& found) {
    Prompt prompt{{}, Text(18253_lsid), PromptIcon::Information, PromptButtons::Ok};
    if (!found.unreadable.empty()) {
        prompt.icon = PromptIcon::Error;
        prompt.text = Text(40677_lsid) + L"\n" +
                      PromptLines(found.unreadable, [](const std::wstring& path) { return path; });
    } else if (!found.stopped && found.ignored > 0) {
        prompt.text = FormatText(Text(41051_lsid), {found.ignored});
    } else if (!found.stopped && found.files.empty()) {
        prompt.text = Text(41052_lsid);
    } else {
        return std::nullopt;
    }
    return prompt;
}

Prompt OpenFailuresPrompt(const std::vector<LasFileFailure>& failures) {
    Prompt prompt;
    prompt.caption = Text(40673_lsid);
    prompt.icon = PromptIcon::Error;
    prompt.text = Text(40671_lsid) + L"\n" + PromptLines(failures, FailureText);
    return prompt;
}

}  // namespace orvex
