#pragma once
#include <cstdint>
#include <optional>

namespace orvex {

/// A part of a raster, in pixels.
struct RasterWindow {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool endsBlocks = false;  ///< no later window reads the blocks that this one lies in

    std::uint64_t Pixels() const {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    }
};

/// The parts in which a raster is read: each pixel once, every block as a whole where it fits into a window,
/// and never more than `mostPixels` in one, whatever size the file gives its blocks.
class RasterWindows {
  public:
    struct Size {
        int width = 0;
        int height = 0;
    };

    RasterWindows(Size raster, Size block, int mostPixels);

    /// The next part; none behind the last one.
    std::optional<RasterWindow> Next();

  private:
    Size raster_;
    Size group_;  ///< whole blocks that are read one after the other
    Size part_;   ///< what is read at once of a group
    int groupX_ = 0;
    int groupY_ = 0;
    int x_ = 0;  ///< in the group
    int y_ = 0;
};

}  // namespace orvex
