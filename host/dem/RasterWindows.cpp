#include "host/dem/RasterWindows.h"

#include <algorithm>

namespace orvex {
namespace {

/// How many pixels of a side whole blocks take when at most `room` shall: at least one block.
int WholeBlocks(int side, int block, std::int64_t room) {
    if (room >= side) {
        return side;
    }
    return static_cast<int>(std::max<std::int64_t>(room / block, 1) * block);
}

}  // namespace

RasterWindows::RasterWindows(Size raster, Size block, int mostPixels) : raster_(raster) {
    const int blockWidth = std::clamp(block.width, 1, raster.width);
    const int blockHeight = std::clamp(block.height, 1, raster.height);
    group_.width = std::min(raster.width, WholeBlocks(raster.width, blockWidth, mostPixels / blockHeight));
    // Several rows of blocks only where a row leaves room.
    group_.height =
        group_.width < raster.width
            ? blockHeight
            : std::min(raster.height, WholeBlocks(raster.height, blockHeight, mostPixels / group_.width));
    part_.width = std::min(group_.width, mostPixels);
    part_.height = std::clamp(mostPixels / part_.width, 1, group_.height);
}

std::optional<RasterWindow> RasterWindows::Next() {
    if (groupY_ >= raster_.height) {
        return std::nullopt;
    }
    const int groupWidth = std::min(group_.width, raster_.width - groupX_);
    const int groupHeight = std::min(group_.height, raster_.height - groupY_);
    RasterWindow window{groupX_ + x_, groupY_ + y_, std::min(part_.width, groupWidth - x_),
                        std::min(part_.height, groupHeight - y_), false};
    x_ += window.width;
    if (x_ < groupWidth) {
        return window;
    }
    x_ = 0;
    y_ += window.height;
    if (y_ < groupHeight) {
        return window;
    }
    y_ = 0;
    window.endsBlocks = true;
    groupX_ += groupWidth;
    if (groupX_ >= raster_.width) {
        groupX_ = 0;
        groupY_ += groupHeight;
    }
    return window;
}

}  // namespace orvex
