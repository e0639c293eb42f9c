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
        text += L"\n" + failures[i].path + L"\n    " + failures[i].cause;
    }
    if (shown < failures.size()) {
        text += L"\n" + FormatText(Text(40672_lsid), {failures.size() - shown});
    }
    return text;
}

}  // namespace orvex
