#include "host/utilities/DgnScanner.h"

namespace orvex {

void DgnScanner::Feed(std::span<const std::byte> bytes) {
    const std::uint64_t end = position_ + bytes.size();
    const auto at = [&](std::uint64_t offset) {
        return std::to_integer<std::uint8_t>(bytes[static_cast<std::size_t>(offset - position_)]);
    };
    // An element begins with its level and type, then the number of 16-bit words that follow.
    while (!isAtEnd_ && next_ < end) {
        for (std::uint64_t i = 0; i < header_.size(); ++i) {
            if (next_ + i >= position_ && next_ + i < end) {
                header_[static_cast<std::size_t>(i)] = at(next_ + i);
            }
        }
        isAtEnd_ = next_ + 2 <= end && header_[0] == 0xFF && header_[1] == 0xFF;
        if (next_ + header_.size() > end) {
            break;
        }
        next_ += header_.size() + std::uint64_t{2} * (header_[2] + 256U * header_[3]);
    }
    position_ = end;
}

}  // namespace orvex
