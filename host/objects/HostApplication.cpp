#include "host/objects/HostApplication.h"

#include <filesystem>

#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex::host {

std::int32_t HostApplication::GetProjectFolder(std::wstring& folder) {
    constexpr auto kSeparator = static_cast<wchar_t>(std::filesystem::path::preferred_separator);
    try {
        std::wstring open = projectFolder_ ? projectFolder_() : std::wstring();
        if (!open.empty() && open.back() != L'/' && open.back() != kSeparator) {
            open += kSeparator;
        }
        folder = std::move(open);
        return kHostOk;
    } catch (...) {
        // A COM object answers with a code, and so does this one.
        LogWarning(L"host: no project folder: " + CurrentExceptionText());
        return kHostFail;
    }
}

std::int32_t HostApplication::GetOptionItem(std::int32_t item, SettingValue& value) {
    if (const auto option = options_.find(item); option != options_.end()) {
        value = option->second;
    }
    return kHostOk;
}

}  // namespace orvex::host
