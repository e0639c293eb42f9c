#pragma once
#include <string>
#include <string_view>

namespace orvex {

/// Writes one line to the component's log: the file named by ORVEX_LOG, else "orvex.log" in the user's cache
/// folder; limited in size. A log that cannot be written is silently ignored. Any thread.
void LogInfo(std::wstring_view line);
void LogWarning(std::wstring_view line);

}  // namespace orvex
