#include "host/strings/Language.h"

namespace orvex {
namespace {

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace

Language LanguageOf(std::string_view localeName) {
    std::string code;
    for (const char c : localeName) {
        if (!IsLetter(c)) {
            break;
        }
        code.push_back(static_cast<char>(c | 0x20));
    }
    return code == "de" ? Language::kGerman : Language::kEnglish;
}

Language UserLanguage() {
    return LanguageOf(UserLocaleName(ProcessEnvironment()));
}

}  // namespace orvex
