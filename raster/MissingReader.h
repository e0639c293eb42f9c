#pragma once
#include <string>

namespace orvex {

/// Why a file that no driver of GDAL's recognises may be in order all the same: its name is that of a format
/// whose driver this GDAL was built without. A sentence for the user; empty when that is not the reason.
std::wstring MissingReaderReason(const std::wstring& path);

}  // namespace orvex
