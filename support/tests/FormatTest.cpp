#include "support/Format.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>

#include "support/Text.h"

namespace orvex {
namespace {

TEST(Format, WritesWhatPrintfWouldInTheCLocale) {
    struct Case {
        const wchar_t* format;
        FormatArg argument;
        const wchar_t* wanted;
    };
    const Case cases[] = {
        {L"%.2f", 1234.5, L"1234.50"},
        {L"%.8lf", -0.5, L"-0.50000000"},
        {L"%.0f", 2.5, L"2"},
        {L"%d files", 7, L"7 files"},
        {L"%5d|", 7, L"    7|"},
        {L"%02x ", 10, L"0a "},
        {L"%I64d", -5000000000LL, L"-5000000000"},
        {L"%lld", 5000000000ULL, L"5000000000"},
        {L"%s.", L"text", L"text."},
        {L"%.3s", L"abcdef", L"abc"},
        {L"%-6s|", L"ab", L"ab    |"},
        {L"100 %%, %i", 3, L"100 %, 3"},
        {L"%d", 12.0, L"12"},
        {L"%g", 0.001, L"0.001"},
        {L"ends with %", 1, L"ends with "},
        {L"%'u files", 999, L"999 files"},
        {L"%'u files", 3000, L"3,000 files"},
        {L"%'d", -1'234'567, L"-1,234,567"},
        {L"%'d", -123, L"-123"},
        {L"%'8u|", 3000U, L"   3,000|"},
        {L"%'u", UINT64_MAX, L"18,446,744,073,709,551,615"},
        {L"%'.2f", 1234567.891, L"1,234,567.89"},
        {L"%'.0f", 1e20, L"100,000,000,000,000,000,000"},
        {L"%'.2f", std::numeric_limits<double>::infinity(), L"inf"},
    };
    for (const Case& c : cases) {
        // Digits are grouped as the user's language does.
        const std::wstring wanted =
            std::regex_replace(c.wanted, std::wregex(L"(\\d),(?=\\d)"), L"$1" + Text(text::kDigitSeparator));
        EXPECT_EQ(FormatText(c.format, {c.argument}), wanted);
    }
}

TEST(Format, CutsMissesAndIgnores) {
    EXPECT_EQ(FormatText(L"%s and %s", {L"one"}), L"one and ");
    EXPECT_EQ(FormatText(L"none", {1, 2}), L"none");
    EXPECT_EQ(FormatText(L"'%s'", {L"0123456789"}, 6), L"'0123");
    EXPECT_EQ(FormatText(L"%999999999d", {1}, 10), L"         ");
}

}  // namespace
}  // namespace orvex
