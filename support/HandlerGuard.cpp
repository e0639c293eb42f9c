#include "support/HandlerGuard.h"

#include <string>

#include "support/LDataError.h"
#include "support/Log.h"
#include "support/UserPrompts.h"

namespace orvex {

void ShowHandlerException(UserPrompts& prompts, std::wstring_view name, StringId caption) noexcept {
    try {
        std::wstring text = L"An exception occurred in ";
        text.append(name).append(L"():\n\n").append(CurrentExceptionText());
        LogWarning(text);
        prompts.Show({text, Text(caption), PromptIcon::Error, PromptButtons::Ok});
    } catch (...) {
        // Out of memory while telling: the dialog staying open is all that can be saved.
        return;
    }
}

}  // namespace orvex
