#pragma once
#include <cstdint>
#include <string_view>

namespace orvex {

/// Part of a file that a header "Range" asks for.
struct RangeAnswer {
    enum class Kind { Whole, Part, Outside };
    Kind kind = Kind::Whole;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// Reads "bytes=0-99", "bytes=100-" or "bytes=-100" (the last 100) for a file of `size` bytes. Whole for
/// anything else, several ranges among it: a server need not know them (RFC 9110, 14.2).
RangeAnswer AnswerRange(std::string_view header, std::uint64_t size);

}  // namespace orvex
