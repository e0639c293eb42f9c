#pragma once
#include <string>
#include <vector>

#include "host/utilities/TiffDirectories.h"

namespace orvex {

/// What an image file says of itself before its pixels.
struct PhotoContainer {
    const wchar_t* fileType = L"";
    TiffFacts facts;  ///< size and bands of the image, its EXIF data and thumbnail
    std::string xmp;  ///< packet, as its bytes; empty for none
};

/// Reads the structure of a JPEG, TIFF, BigTIFF, PNG, GIF, BMP or JPEG 2000 file, told by its bytes whatever
/// its name. Throws LDataError with the cause when it is none of these or its header is damaged.
PhotoContainer ReadPhotoContainer(PhotoBytes& file);

}  // namespace orvex
