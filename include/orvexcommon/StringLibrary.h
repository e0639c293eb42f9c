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

/// The text of a string id in the user's language (ORVEX_LANGUAGE, else the system's; English when a language
/// lacks the id). Never null; the pointer stays valid for the life of the process. An id that no table holds
/// gives "#id" and is reported once (LSSetMissingIdHandler). Safe to call from any thread.
ORVEXSTRINGS_API const wchar_t* LSwchar(unsigned id);

/// As LSwchar, as a string of the caller's own.
ORVEXSTRINGS_API std::wstring LSIDwchar(unsigned id);

/// Called once per process for each id that no table holds, on the thread that asked for it.
using LSMissingIdHandler = void (*)(unsigned id);

/// Says where unknown ids are reported (a line on standard error until this is called, and again after a call
/// with null). Returns the handler that was set. Safe to call from any thread.
ORVEXSTRINGS_API LSMissingIdHandler LSSetMissingIdHandler(LSMissingIdHandler handler);
