#pragma once
#include <optional>
#include <string>

#include "host/utilities/PhotoBytes.h"

namespace orvex {

/// Facts of a TIFF structure: of a TIFF or BigTIFF file, or of the EXIF block in another image.
struct TiffFacts {
    std::uint32_t width = 0;  ///< pixels; 0 if not stated, as in an EXIF block
    std::uint32_t height = 0;
    std::uint32_t bits = 0;  ///< of the first band
    std::uint32_t bands = 0;
    std::int32_t photometric = -1;  ///< -1 if not stated
    std::uint32_t overviews = 0;    ///< reduced images in the chain of directories
    double pixelWidth = 0;          ///< on the ground, of a georeferenced image; 0 if not stated
    double pixelHeight = 0;
    FileRange xmp;        ///< length 0 for none
    FileRange thumbnail;  ///< of a JPEG stream; length 0 for none
    /// Position, time, lens and camera as a small TIFF structure of its own, for an EXIF decoder. It holds
    /// nothing else, above all no maker notes, and its entries are sound; empty if there are none.
    std::string exif;
};

/// Reads the directories of a TIFF structure that fills `range`. Counts and offsets in it are not trusted.
/// nullopt if there is no TIFF header or the first directory cannot be read.
std::optional<TiffFacts> ReadTiffDirectories(PhotoBytes& file, FileRange range);

}  // namespace orvex
