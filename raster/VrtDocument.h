#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace orvex {

/// Of the files that a VRT takes its pixels from, what is odd.
struct VrtSources {
    std::wstring
        distant{};  ///< the first that is no local file (a server, a database), as the document has it
    std::wstring missing{};  ///< path of a local one that does not exist; only the first ones are looked up
    std::size_t lookedUp = 0;
};

/// Checks a file that GDAL would take for a VRT; any other file passes. Throws LDataError if the raster is
/// computed from other files when it is opened, or if the document cannot be parsed or is larger than 8 MB.
/// `path`: absolute. `start`: the file's first bytes, at least those by which GDAL recognises it. Opens
/// nothing that the document names.
VrtSources CheckVrt(const std::wstring& path, std::string_view start);

}  // namespace orvex
