#pragma once
#include <string>

namespace orvex {

/// Compares the checksums in a file of DWG 2000, of its sections and of every object, with what they are of:
/// GDAL reads on where they differ. Throws LDataError if one differs, or a part lies outside the file.
void CheckDwg(const std::wstring& path);

}  // namespace orvex
