#pragma once
// JSON of callers: texts that may hold any file name, and requests that may hold anything.
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace orvex {

/// A text as a JSON string with its quotes. A lone surrogate, which stands for what is no valid Unicode in
/// the name of a file, becomes its escape ("\udc80"), so that the text survives.
std::string JsonQuoted(std::wstring_view text);

/// Parses a JSON text from a caller, in UTF-8. Throws LDataError naming the fault if it is not well-formed,
/// is longer than kMostJsonBytes, exceeds the limits of ExcessOf, or holds U+0000 in a string. Lone
/// surrogates in strings are marked; JsonWide restores them.
nlohmann::json ParseCallersJson(std::string_view text);

/// Text of a string of ParseCallersJson.
std::wstring JsonWide(const std::string& parsed);

}  // namespace orvex
