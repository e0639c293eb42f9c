#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace orvex {

/// Follows the chain of elements of a DGN file of version 7, which ends with a mark: GDAL takes the end of a
/// truncated file for that of the drawing.
class DgnScanner {
  public:
    /// The bytes at Position().
    void Feed(std::span<const std::byte> bytes);
    std::uint64_t Position() const { return position_; }
    /// True once the mark has been seen.
    bool IsAtEnd() const { return isAtEnd_; }

  private:
    std::uint64_t position_ = 0;
    std::uint64_t next_ = 0;  ///< offset of the next element
    std::array<std::uint8_t, 4> header_{};
    bool isAtEnd_ = false;
};

}  // namespace orvex
