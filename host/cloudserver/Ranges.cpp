#include "host/cloudserver/Ranges.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace orvex {

namespace {

/// A number of nothing but digits; the greatest of all for one that is too large.
std::optional<std::uint64_t> NumberOf(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    return error == std::errc() ? value : std::numeric_limits<std::uint64_t>::max();
}

RangeAnswer Part(std::uint64_t offset, std::uint64_t length) {
    return {length > 0 ? RangeAnswer::Kind::Part : RangeAnswer::Kind::Outside, offset, length};
}

}  // namespace

RangeAnswer AnswerRange(std::string_view header, std::uint64_t size) {
    const RangeAnswer whole{RangeAnswer::Kind::Whole, 0, size};
    constexpr std::string_view unit = "bytes=";
    const std::size_t dash = header.find('-');
    if (!header.starts_with(unit) || dash == std::string_view::npos) {
        return whole;
    }
    const std::string_view firstText = header.substr(unit.size(), dash - unit.size());
    const std::string_view lastText = header.substr(dash + 1);
    const auto first = NumberOf(firstText), last = NumberOf(lastText);
    if (firstText.empty() && last) {
        const std::uint64_t length = std::min(*last, size);
        return Part(size - length, length);
    }
    if (!first || (!last && !lastText.empty()) || (last && *last < *first)) {
        return whole;
    }
    if (*first >= size) {
        return Part(size, 0);
    }
    return Part(*first, std::min(last.value_or(size - 1), size - 1) - *first + 1);
}

}  // namespace orvex
