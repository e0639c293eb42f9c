#include <windows.h>

#include <vector>

#include "host/strings/Language.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// The first of the languages that the user has chosen for the desktop, as a tag ("de-DE"); empty when the
/// system does not say.
std::string DesktopLanguage() {
    ULONG languages = 0;
    ULONG characters = 0;
    if (GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &languages, nullptr, &characters) == FALSE) {
        return {};
    }
    std::vector<wchar_t> names(characters);  // each ended by a zero, all ended by one more
    if (names.empty() ||
        GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &languages, names.data(), &characters) == FALSE) {
        return {};
    }
    return ToUtf8(names.data());
}

}  // namespace

// The C runtime's copy is made when the process starts: it does not have what the host sets later on.
Environment ProcessEnvironment() {
    return [](const char* name) {
        std::string value(256, '\0');  // longer than any name of a language; a longer one is none
        const DWORD length = GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size()));
        value.resize(length < value.size() ? length : 0);
        return value;
    };
}

std::string UserLocaleName(const Environment& environment) {
    std::string value = environment("ORVEX_LANGUAGE");
    return value.empty() ? DesktopLanguage() : value;
}

}  // namespace orvex
