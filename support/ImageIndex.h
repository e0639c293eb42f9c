#pragma once

namespace orvex {

/// Indices of the dialog's image list.
enum ImageIndex : int {
    kImageCloud,
    kImageFolder,
    kImageLink,
    kImageLoadable,
    kImageInformation,
    kImageWarning,
    kImageNotLoadable,
    kImageInactiveTab,
    kImageLas,
    kImageRaster,
    kImageFeature,
    kImageDem,
    kImagePhoto,
    kImageCloudLas  ///< one past the list: the selected cloud tab shows no image
};

/// Names of the images' files, by index: "<name>-16.png" and "<name>-32.png".
inline constexpr const char* kImageNames[] = {"cloud",   "folder", "link",     "loadable", "information",
                                              "warning", "error",  "inactive", "las",      "raster",
                                              "feature", "dem",    "photo"};
static_assert(sizeof(kImageNames) / sizeof(*kImageNames) == kImageCloudLas);

}  // namespace orvex
