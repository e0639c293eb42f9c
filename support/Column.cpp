#include "support/Column.h"

#include <fmt/format.h>

#include <cmath>

#include "support/Format.h"

namespace orvex {

std::wstring FormatCell(const GridCell& cell, const wchar_t* format) {
    if (const auto* text = std::get_if<std::wstring>(&cell)) {
        return *text;
    }
    if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        return UtcTimeText(*time);
    }
    const auto* number = std::get_if<double>(&cell);
    return number == nullptr || std::isnan(*number) ? std::wstring() : FormatText(format, {*number});
}

std::wstring ExactCell(const GridCell& cell, const wchar_t* format) {
    const auto* number = std::get_if<double>(&cell);
    if (number == nullptr) {
        return FormatCell(cell, format);
    }
    return std::isfinite(*number) ? FromUtf8(fmt::format("{}", *number)) : std::wstring();
}

}  // namespace orvex
