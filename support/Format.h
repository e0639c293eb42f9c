#pragma once
// printf-like formatting of wide texts, independent of the process locale ("%.2f" always writes a point).
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace orvex {

/// One argument of a format. Texts are viewed, not copied.
class FormatArg {
  public:
    FormatArg(std::wstring_view text) : value_(text) {}
    FormatArg(const std::wstring& text) : value_(std::wstring_view(text)) {}
    FormatArg(const wchar_t* text) : value_(std::wstring_view(text)) {}
    FormatArg(std::floating_point auto number) : value_(static_cast<double>(number)) {}
    FormatArg(std::signed_integral auto number) : value_(static_cast<std::int64_t>(number)) {}
    FormatArg(std::unsigned_integral auto number) : value_(static_cast<std::uint64_t>(number)) {}

    const auto& Value() const { return value_; }

  private:
    std::variant<std::wstring_view, double, std::int64_t, std::uint64_t> value_;
};

/// Applies a format with the conversions %s %d %i %u %x %X %f %e %g %c %%, flags, width and precision; length
/// modifiers (l, ll, I64, h, z) are accepted and ignored. The flag ' groups the digits of %d %i %u %f
/// ("3,000"). A conversion without an argument writes nothing; surplus arguments are ignored. The result is
/// truncated to `limit` - 1 characters, as in a buffer of that size.
std::wstring FormatText(std::wstring_view format, std::initializer_list<FormatArg> arguments,
                        std::size_t limit = 32768);

/// Conversions of a format in order, one letter each ("sd" for "%s of %d"; "%%" gives none).
std::string ConversionsOf(std::wstring_view format);

/// A format of one number ("%.2f") that groups its digits.
std::wstring GroupedFormat(std::wstring_view format);

/// "3,000": a number as texts for people show it, with the string library's digit separator.
std::wstring GroupedNumber(std::uint64_t number);

/// "2024-05-17 09:30": a time in milliseconds since 1970-01-01 UTC, to the minute, in UTC.
std::wstring UtcTimeText(std::int64_t milliseconds);
/// The same to the second: "2024-05-17 09:30:07".
std::wstring UtcSecondText(std::int64_t milliseconds);

}  // namespace orvex
