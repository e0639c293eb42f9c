#include "dialog/page/ScanPrompt.h"

#include "dialog/page/PromptLines.h"
#include "support/Format.h"

namespace orvex {

std::optional<Prompt> ScanPrompt(const ScanResult& found, const ScanTexts& texts) {
    Prompt prompt{{}, Text(texts.caption), PromptIcon::Information, PromptButtons::Ok};
    if (!found.unreadable.empty()) {
        prompt.icon = PromptIcon::Error;
        prompt.text = Text(text::kFoldersNotSearched) + L"\n" +
                      PromptLines(found.unreadable, [](const std::wstring& path) { return path; });
    } else if (!found.stopped && found.ignored > 0) {
        prompt.text = FormatText(Text(texts.ignored), {found.ignored});
    } else if (!found.stopped && found.files.empty()) {
        prompt.text = Text(texts.nothingFound);
        prompt.icon = texts.nothingFoundIcon;
    } else {
        return std::nullopt;
    }
    return prompt;
}

}  // namespace orvex
