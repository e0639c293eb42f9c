#include "support/Format.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "support/Text.h"

namespace orvex {
namespace {

struct Conversion {
    char letter = 0;  // 0 at the end of the format, '%' for a literal percent sign
    std::string flags;
    int width = 0;
    int precision = -1;
};

int ReadNumber(std::wstring_view format, std::size_t& at) {
    int number = 0;
    while (at < format.size() && format[at] >= L'0' && format[at] <= L'9') {
        number = std::min(number * 10 + static_cast<int>(format[at] - L'0'), 4096);
        ++at;
    }
    return number;
}

// Reads what follows a '%' at `at` and moves behind it.
Conversion ReadConversion(std::wstring_view format, std::size_t& at) {
    constexpr std::wstring_view kFlags = L"-+ 0#'";
    Conversion result;
    while (at < format.size() && kFlags.find(format[at]) != std::wstring_view::npos) {
        result.flags.push_back(static_cast<char>(format[at++]));
    }
    result.width = ReadNumber(format, at);
    if (at < format.size() && format[at] == L'.') {
        ++at;
        result.precision = ReadNumber(format, at);
    }
    if (format.substr(at, 3) == L"I64") {
        at += 3;
    }
    while (at < format.size() && (format[at] == L'l' || format[at] == L'h' || format[at] == L'z')) {
        ++at;
    }
    if (at < format.size() && format[at] < 0x80) {
        result.letter = static_cast<char>(format[at++]);
    }
    return result;
}

std::wstring Widen(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

std::wstring Pad(std::wstring text, const Conversion& conversion) {
    const auto width = static_cast<std::size_t>(conversion.width);
    if (text.size() < width) {
        const bool left = conversion.flags.find('-') != std::string::npos;
        text.insert(left ? text.end() : text.begin(), width - text.size(), L' ');
    }
    return text;
}

// The same conversion in the notation of fmt, whose output never depends on the locale.
std::string NumberSpec(const Conversion& conversion, char letter) {
    const auto has = [&](char flag) { return conversion.flags.find(flag) != std::string::npos; };
    std::string spec = "{:";
    spec += has('-') ? "<" : (has('0') ? "" : ">");
    spec += has('+') ? "+" : (has(' ') ? " " : "");
    spec += has('#') ? "#" : "";
    spec += has('0') && !has('-') ? "0" : "";
    spec += conversion.width > 0 ? std::to_string(conversion.width) : "";
    if (conversion.precision >= 0 && (letter == 'f' || letter == 'e' || letter == 'g')) {
        spec += '.' + std::to_string(conversion.precision);
    }
    return spec + letter + '}';
}

// A separator between each three digits before the decimal point.
std::wstring Grouped(std::wstring number) {
    const std::wstring separator = Text(text::kDigitSeparator);
    const std::size_t first = number.find_first_of(L"0123456789");
    std::size_t at = std::min(number.find(L'.'), number.size());
    while (at > first && at - first > 3) {
        at -= 3;
        number.insert(at, separator);
    }
    return number;
}

template <typename Number>
std::wstring WriteNumber(const Conversion& conversion, char letter, Number number) {
    const bool isGrouped =
        conversion.flags.find('\'') != std::string::npos && (letter == 'd' || letter == 'f');
    Conversion written = conversion;
    written.width = isGrouped ? 0 : conversion.width;
    std::wstring text = Widen(fmt::format(fmt::runtime(NumberSpec(written, letter)), number));
    return isGrouped ? Pad(Grouped(std::move(text)), conversion) : text;
}

template <typename Number>
std::wstring WriteInteger(const Conversion& conversion, Number number) {
    switch (conversion.letter) {
        case 'x':
        case 'X':
            return WriteNumber(conversion, conversion.letter, static_cast<std::uint64_t>(number));
        case 'c':
            return Pad(std::wstring(1, static_cast<wchar_t>(number)), conversion);
        case 'f':
        case 'e':
        case 'g':
            return WriteNumber(conversion, conversion.letter, static_cast<double>(number));
        default:
            return WriteNumber(conversion, 'd', number);
    }
}

std::wstring WriteDouble(const Conversion& conversion, double number) {
    const char letter = conversion.letter == 'e' || conversion.letter == 'g' ? conversion.letter : 'f';
    Conversion adjusted = conversion;
    if (adjusted.precision < 0) {
        adjusted.precision = letter == 'f' && conversion.letter != 'f' ? 0 : 6;
    }
    return WriteNumber(adjusted, letter, number);
}

std::wstring WriteText(const Conversion& conversion, std::wstring_view text) {
    if (conversion.precision >= 0) {
        text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    }
    return Pad(std::wstring(text), conversion);
}

std::wstring WriteArgument(const Conversion& conversion, const FormatArg& argument) {
    return std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, std::wstring_view>) {
                return WriteText(conversion, value);
            } else if constexpr (std::is_same_v<T, double>) {
                return WriteDouble(conversion, value);
            } else {
                return WriteInteger(conversion, value);
            }
        },
        argument.Value());
}

}  // namespace

std::wstring FormatText(std::wstring_view format, std::initializer_list<FormatArg> arguments,
                        std::size_t limit) {
    std::wstring out;
    auto next = arguments.begin();
    for (std::size_t at = 0; at < format.size();) {
        if (format[at] != L'%') {
            out.push_back(format[at++]);
            continue;
        }
        ++at;
        const Conversion conversion = ReadConversion(format, at);
        if (conversion.letter == '%') {
            out.push_back(L'%');
        } else if (conversion.letter != 0 && next != arguments.end()) {
            out += WriteArgument(conversion, *next++);
        }
    }
    if (limit > 0 && out.size() >= limit) {
        out.resize(WholeLength(out, limit - 1));
    }
    return out;
}

std::string ConversionsOf(std::wstring_view format) {
    std::string letters;
    for (std::size_t at = 0; at < format.size();) {
        if (format[at++] == L'%') {
            const char letter = ReadConversion(format, at).letter;
            if (letter != '%' && letter != 0) {
                letters.push_back(letter);
            }
        }
    }
    return letters;
}

std::wstring GroupedFormat(std::wstring_view format) {
    std::wstring grouped(format);
    const std::size_t at = grouped.find(L'%');
    return at == std::wstring::npos ? grouped : grouped.insert(at + 1, 1, L'\'');
}

std::wstring GroupedNumber(std::uint64_t number) {
    return FormatText(L"%'u", {number});
}

std::wstring UtcTimeText(std::int64_t milliseconds) {
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(milliseconds)};
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{floor<minutes>(time - day)};
    return FormatText(L"%04d-%02u-%02u %02d:%02d",
                      {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), clock.hours().count(), clock.minutes().count()});
}

std::wstring UtcSecondText(std::int64_t milliseconds) {
    using namespace std::chrono;
    const std::chrono::milliseconds time(milliseconds);
    const auto second = floor<seconds>(time) - floor<minutes>(time);
    return UtcTimeText(milliseconds) + FormatText(L":%02d", {second.count()});
}

}  // namespace orvex
