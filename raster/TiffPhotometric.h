#pragma once
#include <optional>
#include <string>

namespace orvex {

/// The tag PhotometricInterpretation (262) of a TIFF's first directory, in either format and byte order; none
/// when the file is no TIFF or does not state it. GDAL does not tell the value.
std::optional<int> ReadTiffPhotometric(const std::wstring& path);

}  // namespace orvex
