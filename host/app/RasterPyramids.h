#pragma once
#include <string>
#include <vector>

#include "host/app/FailureText.h"
#include "support/ProgressIf.h"

namespace orvex {

/// Builds reduced-resolution levels for rasters that have none, as "<name>.ovr" beside each: the rasters
/// themselves are only read, and no file is replaced.
class RasterPyramids {
  public:
    struct Result {
        std::size_t built = 0;
        std::size_t notNeeded = 0;  ///< have levels already, or are small
        std::vector<FileFailure> failures;
        bool stopped = false;  ///< what was complete by then stays
    };

    /// The range of `progress` is a thousand for each raster; its text is the raster's name. One failure does
    /// not keep the others from being built. Never throws, except for want of memory. From any thread.
    static Result Build(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress);

    /// Rasters up to so many pixels on their longer side are read fast enough as they are.
    static constexpr int kSmallest = 1024;
};

}  // namespace orvex
