#include "host/app/FailureText.h"

#include <algorithm>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

std::wstring FailureText(const std::wstring& heading, const std::vector<FileFailure>& failures) {
    constexpr std::size_t kMostShown = 12;
    std::wstring text = heading + L"\n";
    const std::size_t shown = std::min(failures.size(), kMostShown);
    for (std::size_t i = 0; i < shown; ++i) {
        const auto& [path, cause] = failures[i];
        text += L"\n";
        // Some causes are whole sentences about the file.
        if (cause.find(path) == std::wstring::npos) {
            text.append(path).append(L"\n    ");
        }
        text += cause;
    }
    if (shown < failures.size()) {
        text += L"\n" + FormatText(Text(40672_lsid), {failures.size() - shown});
    }
    return text;
}

}  // namespace orvex
