#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

/// Checked GeoKeys of a LAS file: each lies inside its record and has the type of value that its id requires.
struct GeoKeys {
    std::vector<std::uint16_t> directory;  ///< four numbers of header, then four a key; empty for no keys
    std::vector<double> doubles;
    std::string text;
};

/// Reads the data of the GeoKey directory, doubles and text records. What cannot be used is left out;
/// `reason` then says what, for the user.
GeoKeys ReadGeoKeys(const std::string& directory, const std::string& doubles, const std::string& text,
                    std::wstring& reason);

/// A TIFF file of one pixel that holds the keys, as GDAL reads them.
std::string GeoKeysToTiff(const GeoKeys& keys);

}  // namespace orvex
