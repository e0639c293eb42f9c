#pragma once
// Small elevation rasters, written by GDAL.
#include <gdal.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvex::testing {

struct DemSample {
    int width = 7;
    int height = 5;
    GDALDataType type = GDT_Float32;
    /// nullopt writes no georeference.
    std::optional<std::array<double, 6>> transform{{500000, 2, 0, 5600000, 0, -2}};
    std::string crs;  ///< as GDAL takes it: "EPSG:25832", a WKT ...; empty for none
    std::optional<double> noData;
    std::string unit;
    double scale = 1;
    double offset = 0;
    bool hidesFirstPixel = false;  ///< by a mask in the file
    std::vector<std::pair<std::string, std::string>> creationOptions;
    std::vector<std::pair<std::string, std::string>> metadata;

    /// Value stored for a pixel.
    std::function<double(int column, int row)> value = [](int column, int row) {
        return 100 + column + row * 0.25;
    };
};

/// Writes a GeoTIFF row by row. False if GDAL refuses.
bool WriteDem(const std::wstring& path, const DemSample& sample);

}  // namespace orvex::testing
