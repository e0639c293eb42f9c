#pragma once
#include <span>
#include <string_view>

namespace orvex {

/// One entry of a file picker's filter list.
struct RasterFilter {
    std::wstring_view name;      ///< as it is shown
    std::wstring_view patterns;  ///< "*.tif;*.tiff"
};

/// The filters of the picker for raster files, in its order.
std::span<const RasterFilter> RasterPickerFilters();

/// The extensions, lower-case with their dots, that a search of a folder for raster files takes. MrSID is
/// left out on purpose: such files are picked one by one.
std::span<const std::wstring_view> RasterScanExtensions();

/// The extensions, in the same form, of elevation formats that are no images.
std::span<const std::wstring_view> ElevationExtensions();

/// Whether a search of a folder takes a file for a raster by its name, in any letter case.
bool IsRasterName(std::wstring_view path);

/// The same for the formats of elevations that are no images.
bool IsElevationName(std::wstring_view path);

}  // namespace orvex
