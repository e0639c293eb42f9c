#pragma once
#include <cstdint>
#include <string>

namespace orvex {

/// "2024-05-17 09:30": a time given in milliseconds since 1970-01-01 UTC, to the minute, in UTC.
std::wstring UtcTimeText(std::int64_t milliseconds);

}  // namespace orvex
