#pragma once
// The details of a raster file one by one, by the names that OrvexHost.idl gives them. It needs no Windows.
#include <cstdint>
#include <functional>
#include <string_view>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// The item of a name and an index; nothing when it is not stated, or when there is no such name or index.
SettingValue RasterDetail(const RasterProperties& properties, std::wstring_view name, std::int32_t index);

/// Asks for one item. Nothing when it is not stated or cannot be had.
using RasterDetailSource = std::function<SettingValue(std::wstring_view name, std::int32_t index)>;

/// Fills what `properties` holds beyond what every raster-information object says; `bands` is known already.
/// A source that states no driver has no details and is asked for nothing else. Items of another type than
/// the one that is wanted, and numbers that do not fit, are not stated. Lists are asked for until the first
/// index that is not stated, and never for more than a thousand entries.
void ReadRasterDetails(const RasterDetailSource& source, RasterProperties& properties);

}  // namespace orvex
