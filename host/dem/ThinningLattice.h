#pragma once
#include <cstdint>

namespace orvex {

/// Which pixels a thinning keeps: one of n, lying as evenly over rows and columns as a lattice can.
class ThinningLattice {
  public:
    /// `step` is n; 0 counts as 1, and more than 65535 as that.
    explicit ThinningLattice(unsigned step);

    std::int64_t Step() const { return step_; }
    /// The first kept column of a row that is not before `column`; may lie behind the row's end.
    std::int64_t FirstColumn(std::int64_t row, std::int64_t column) const {
        const std::int64_t phase = (column + row * shift_) % step_;
        return phase == 0 ? column : column + step_ - phase;
    }
    /// At least so many pixels are kept of a raster; with a step of 1 exactly so many.
    std::uint64_t LeastOf(std::uint64_t width, std::uint64_t height) const {
        // Any `step` neighbours of a row hold one.
        return width / static_cast<std::uint64_t>(step_) * height;
    }

  private:
    std::int64_t step_;
    std::int64_t shift_;  ///< columns by which the kept ones move to the left from a row to the next
};

}  // namespace orvex
