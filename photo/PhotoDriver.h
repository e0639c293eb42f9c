#pragma once
#include <optional>
#include <string>

#include "photo/PhotoRow.h"

namespace orvex {

/// Facts of an image in a format without metadata of photos that GDAL reads, such as ERDAS Imagine, ECW or
/// MrSID; nullopt if it cannot. Only the formats that the photo page offers are tried.
std::optional<PhotoImage> ReadImageWithDriver(const std::wstring& path);

}  // namespace orvex
