#pragma once

namespace orvex {

/// Indices of the dialog's image list.
enum ImageIndex : int {
    kImageCloud = 0,
    kImageFolder = 1,
    kImageLink = 2,
    kImageLoadable = 3,
    kImageInformation = 4,
    kImageWarning = 5,
    kImageNotLoadable = 6,
    kImageInactiveTab = 7,
    kImageLas = 8,
    kImageRaster = 9,
    kImageFeature = 10,
    kImageDem = 11,
    kImagePhoto = 12,
    kImageCloudLas = 13  ///< one past the list: the selected cloud tab shows no image
};
inline constexpr int kImageCount = 13;

}  // namespace orvex
