#pragma once
// The host's string-resource library: every fixed text that a user sees, by numeric id.
#include <string>

#if defined(_WIN32)
#if defined(ORVEXSTRINGS_BUILD)
#define ORVEXSTRINGS_API __declspec(dllexport)
#else
#define ORVEXSTRINGS_API __declspec(dllimport)
#endif
#else
#define ORVEXSTRINGS_API __attribute__((visibility("default")))
#endif

namespace orvex {

/// Number of a text; 0: no text. Code uses the named constants of orvexcommon/TextIds.h.
struct StringId {
    unsigned value = 0;
    friend constexpr bool operator==(StringId, StringId) = default;
};

}  // namespace orvex

/// Text of a string id in the user's language (ORVEX_LANGUAGE, else the system's; English if a language lacks
/// the id). Never null; valid for the life of the process. An unknown id gives "#id" and is reported once
/// (LSSetMissingIdHandler). Any thread.
ORVEXSTRINGS_API const wchar_t* LSwchar(unsigned id);

/// The same as LSwchar, as a string.
ORVEXSTRINGS_API std::wstring LSIDwchar(unsigned id);

/// Called once per process for each unknown id, on the thread that asked for it.
using LSMissingIdHandler = void (*)(unsigned id);

/// Sets the handler of unknown ids; null: a line on standard error, as at the start. Returns the previous
/// one. Any thread.
ORVEXSTRINGS_API LSMissingIdHandler LSSetMissingIdHandler(LSMissingIdHandler handler);
