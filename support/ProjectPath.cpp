#include "support/ProjectPath.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr wchar_t kSeparator = static_cast<wchar_t>(std::filesystem::path::preferred_separator);

// Stored texts may come from the other system.
bool IsAnySeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

}  // namespace

std::wstring InsertProjectPathToken(const std::wstring& folderText) {
    if (folderText.find(kProjectPathToken) != std::wstring::npos) {
        return folderText;
    }
    const std::size_t colon = folderText.find(L':');
    return kProjectPathToken + (colon == std::wstring::npos ? folderText : folderText.substr(colon + 1));
}

std::wstring ResolveProjectPath(const std::wstring& folderText, const std::wstring& projectFolder) {
    const std::size_t token = folderText.find(kProjectPathToken);
    if (token == std::wstring::npos) {
        return NativePath(folderText);
    }
    if (token != 0) {
        throw LDataError(FormatText(Text(text::kProjectPathNotFirst), {folderText}));
    }
    if (projectFolder.empty()) {
        throw LDataError(FormatText(Text(text::kProjectFolderUnknown), {folderText}));
    }
    std::wstring rest = folderText.substr(std::wstring_view(kProjectPathToken).size());
    rest.erase(rest.begin(), std::ranges::find_if_not(rest, IsAnySeparator));
    // The default is stored with "\" on every system.
    std::ranges::replace_if(rest, IsAnySeparator, kSeparator);
    return rest.empty() ? NativePath(projectFolder) : NativePath(WithTrailingSeparator(projectFolder) + rest);
}

std::wstring WithTrailingSeparator(std::wstring folder) {
    if (folder.empty() || !IsAnySeparator(folder.back())) {
        folder += kSeparator;
    }
    return folder;
}

}  // namespace orvex
