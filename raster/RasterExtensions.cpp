#include "raster/RasterExtensions.h"

#include <algorithm>

#include "support/Text.h"

namespace orvex {
namespace {

constexpr RasterFilter kPickerFilters[] = {
    {L"All Image Files",
     L"*.tif;*.tiff;*.jpg;*.jpeg;*.rgb;*.png;*.sid;*.gif;*.bmp;*.jp2;*.jp2k;*.flt;*.ecw;*.img"},
    {L"TIF Files (*.tif)", L"*.tif"},
    {L"JPEG Files (*.jpg)", L"*.jpg"},
    {L"PNG Files (*.png)", L"*.png"},
    {L"GIF Files (*.gif)", L"*.gif"},
    {L"BMP Files (*.bmp)", L"*.bmp"},
    {L"MrSID Files (*.sid)", L"*.sid"},
    {L"JP2000 Files (*.jp2)", L"*.jp2"},
    {L"ECW Files (*.ecw)", L"*.ecw"},
    {L"IMG Files (*.img)", L"*.img"},
    {L"All Files (*.*)", L"*.*"}};

constexpr std::wstring_view kScanExtensions[] = {L".tif", L".tiff", L".jpg", L".jpeg", L".rgb",
                                                 L".png", L".gif",  L".bmp", L".jp2",  L".jp2k",
                                                 L".ecw", L".img",  L".flt"};

constexpr std::wstring_view kElevationExtensions[] = {L".asc", L".bil", L".dem", L".dt0",
                                                      L".dt1", L".dt2", L".grd", L".hgt"};

// The one file of a coverage's folder that stands for it.
constexpr std::wstring_view kCoverageName = L"hdr.adf";

bool HasOneOf(std::wstring_view path, std::span<const std::wstring_view> extensions) {
    const std::wstring extension = UpperExtensionOf(path);
    return std::ranges::any_of(extensions,
                               [&](std::wstring_view known) { return EqualNoCase(known, extension); });
}

}  // namespace

std::span<const RasterFilter> RasterPickerFilters() {
    return kPickerFilters;
}

std::span<const std::wstring_view> RasterScanExtensions() {
    return kScanExtensions;
}

std::span<const std::wstring_view> ElevationExtensions() {
    return kElevationExtensions;
}

bool IsRasterName(std::wstring_view path) {
    return HasOneOf(path, kScanExtensions);
}

bool IsElevationName(std::wstring_view path) {
    return HasOneOf(path, kElevationExtensions) || EqualNoCase(FileNameOf(path), kCoverageName);
}

}  // namespace orvex
