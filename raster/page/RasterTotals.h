#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialog/details/DetailSection.h"
#include "raster/RasterRow.h"

namespace orvex {

/// Sums over several rows.
struct RasterTotals {
    std::size_t files = 0;
    std::size_t notReadable = 0;
    std::size_t withFindings = 0;
    std::uint64_t bytes = 0;       ///< of the files
    std::uint64_t totalBytes = 0;  ///< with their sidecars
    double pixels = 0;
    std::size_t layers = 0;
    std::vector<std::wstring> crsNames;  ///< each once, in order of the rows; "" for files without a CRS
    bool isGeographic = false;
    /// Minimum X, minimum Y, maximum X, maximum Y over all files; none when their CRS differ or none has one.
    std::optional<std::array<double, 4>> extent;
};

/// `records`: indices into `rows`.
RasterTotals RasterTotalsOf(std::span<const RasterRow> rows, std::span<const std::size_t> records);

/// The totals as one section.
DetailSection RasterTotalsSection(const RasterTotals& totals);

}  // namespace orvex
