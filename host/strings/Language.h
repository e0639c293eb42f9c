#pragma once
// The language in which the user reads the product.
#include <functional>
#include <string>
#include <string_view>

namespace orvex {

enum class Language { kEnglish, kGerman };

/// The language of a locale name or language tag ("de", "de_DE.UTF-8", "DE-at"), in any letter case. English
/// for every language that has no table, and for an empty name.
Language LanguageOf(std::string_view localeName);

/// The value of an environment variable; empty when it is not set.
using Environment = std::function<std::string(const char* name)>;

/// The environment of this process as it is now.
Environment ProcessEnvironment();

/// The locale name that decides: the product's own variable, else what the system says. May be empty.
std::string UserLocaleName(const Environment& environment);

/// The language of this process's user.
Language UserLanguage();

}  // namespace orvex
