#pragma once
#include <gdal.h>

#include <optional>

namespace orvex {

/// What a band says for "no data", as it says it; none when it says nothing. Integers beyond 2^53 are
/// rounded.
std::optional<double> BandNodata(GDALRasterBandH band);

/// The same as the band's pixels hold it: a text such as "-9999.9" names the nearest number of the band's
/// type.
std::optional<double> BandNodataAsStored(GDALRasterBandH band);

/// Bits of a value: fewer than the data type has, where the band says so.
int BandBits(GDALRasterBandH band);

}  // namespace orvex
