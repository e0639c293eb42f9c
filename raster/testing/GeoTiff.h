#pragma once
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gdal.h>

#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A small GeoTIFF, written by GDAL.
struct GeoTiff {
    int width = 20;
    int height = 10;
    int bands = 1;
    GDALDataType type = GDT_Byte;
    std::string crs = "EPSG:32633";  ///< in any form that GDAL understands; empty for none
    std::optional<std::array<double, 6>> transform = std::array<double, 6>{500000, 0.5, 0, 5300000, 0, -0.5};
    std::vector<std::string> options{};          ///< creation options: "COMPRESS=DEFLATE"
    std::function<void(GDALDatasetH)> change{};  ///< runs before the file is closed

    /// Writes it and returns its full path.
    std::wstring Write(const TemporaryFolder& folder, const std::wstring& name) const;
};

}  // namespace orvex::testing
