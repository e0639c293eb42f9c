#pragma once
// Details of a raster file as single items, under the names that OrvexHost.idl gives them. Portable, so that
// it is tested on every platform.
#include <cstdint>
#include <functional>
#include <string_view>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// Item by name and index; std::monostate if it is not stated or there is no such name or index.
SettingValue RasterDetail(const RasterProperties& properties, std::wstring_view name, std::int32_t index);

/// Returns one item; std::monostate if it is not stated or cannot be read.
using RasterDetailSource = std::function<SettingValue(std::wstring_view name, std::int32_t index)>;

/// Fills the details of `properties`, whose essentials (`bands` among them) are already set. A source without
/// a driver item has no details and is asked for nothing else. Items of the wrong type and numbers out of
/// range count as not stated. Lists end at the first index that is not stated, at most at 1000 entries.
void ReadRasterDetails(const RasterDetailSource& source, RasterProperties& properties);

}  // namespace orvex
