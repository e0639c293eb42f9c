#pragma once
#include <string>
#include <string_view>

namespace orvex {

/// Diagnostics of the component: one line each, in the file that ORVEX_LOG names, else in "orvex.log" in the
/// user's cache folder; bounded in size. A log that cannot be written is silently without effect. Safe from
/// any thread.
void LogInfo(std::wstring_view line);
void LogWarning(std::wstring_view line);

}  // namespace orvex
