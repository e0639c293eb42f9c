#include "support/ProjectPath.h"

#include <algorithm>
#include <cwctype>
#include <filesystem>
#include <optional>
#include <string_view>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr wchar_t kSeparator = static_cast<wchar_t>(std::filesystem::path::preferred_separator);

// Stored texts may come from the other system.
bool IsAnySeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

bool IsInName(wchar_t character) {
    return character == L'_' || (character < 0x80 && std::iswalnum(static_cast<wint_t>(character)) != 0);
}

/// A variable in a text, with the signs around its name.
struct Variable {
    std::wstring_view name;
    std::size_t length = 0;
};

/// The variable that a text begins with; an empty name if it begins with none.
Variable VariableAt(std::wstring_view text) {
    if (text.starts_with(L'%')) {  // its name may have other characters: "ProgramFiles(x86)"
        const std::size_t end = text.find_first_of(L"%\\/:", 1);
        const bool isClosed = end != std::wstring_view::npos && text[end] == L'%';
        return isClosed ? Variable{text.substr(1, end - 1), end + 1} : Variable{};
    }
    if (!text.starts_with(L'$')) {
        return {};
    }
    const std::size_t start = text.starts_with(L"${") ? 2 : 1;
    const auto rest = text.substr(start);
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(rest, IsInName) - rest.begin());
    const bool isClosed = start == 1 || rest.substr(length).starts_with(L'}');
    return isClosed ? Variable{rest.substr(0, length), 2 * start - 1 + length} : Variable{};
}

std::wstring WithVariables(std::wstring_view text) {
    std::wstring expanded;
    while (!text.empty()) {
        const Variable variable = VariableAt(text);
        const std::optional<std::wstring> value =
            variable.name.empty() ? std::nullopt : EnvironmentVariable(std::wstring(variable.name));
        expanded += value.value_or(std::wstring(1, text.front()));
        text.remove_prefix(value.has_value() ? variable.length : 1);
    }
    return expanded;
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
    const std::wstring expanded = WithVariables(folderText);
    const std::size_t token = expanded.find(kProjectPathToken);
    if (token == std::wstring::npos) {
        return NativePath(expanded);
    }
    if (token != 0) {
        throw LDataError(FormatText(Text(text::kProjectPathNotFirst), {folderText}));
    }
    if (projectFolder.empty()) {
        throw LDataError(FormatText(Text(text::kProjectFolderUnknown), {folderText}));
    }
    std::wstring rest = expanded.substr(std::wstring_view(kProjectPathToken).size());
    rest.erase(rest.begin(), std::ranges::find_if_not(rest, IsAnySeparator));
    // The default is stored with "\" on every system.
    std::ranges::replace_if(rest, IsAnySeparator, kSeparator);
    return rest.empty() ? NativePath(projectFolder) : NativePath(WithTrailingSeparator(projectFolder) + rest);
}

std::wstring MakeWritableFolder(const std::wstring& folderText, const std::wstring& projectFolder) {
    std::wstring folder;
    try {
        folder = ResolveProjectPath(folderText, projectFolder);
    } catch (const LDataError& error) {
        LogWarning(error.Text());
        return {};
    }
    if (RootLength(folder) == 0) {  // the process's current folder is none that the user knows
        return {};
    }
    const SystemError error = CreateFolders(folder);
    if (error != 0) {
        LogWarning(folder + L": " + SystemErrorText(error));
    }
    return FolderExists(folder) && CanCreateFilesIn(ToPath(folder)) ? folder : std::wstring();
}

std::wstring WithTrailingSeparator(std::wstring folder) {
    if (folder.empty() || !IsAnySeparator(folder.back())) {
        folder += kSeparator;
    }
    return folder;
}

}  // namespace orvex
