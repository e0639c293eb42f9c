#pragma once
#include <gdal.h>

#include <optional>
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

struct GeoKeyFacts;

/// No-data value in the precision of the band's type, since a file may state "-9999.9" for a Float32 band;
/// nullopt if none. 64-bit integers beyond 2^53 are rounded.
std::optional<double> BandNodataAsStored(GDALRasterBandH band);

/// Bits per pixel as stored: fewer than the data type has where the file states so.
int BandBits(GDALRasterBandH band);

/// Fills the number of bands, bits and overviews of the first one, and details of at most
/// kMostBandsDescribed. `onlyStated`: asks for nothing that could open other files. `known`: of the file's
/// GeoKeys; null if nothing is.
void ReadBands(GDALDatasetH dataset, bool onlyStated, const GeoKeyFacts* known, RasterProperties& properties);

/// Fills the colour model and the photometric interpretation, after ReadBands. `path`: the dataset's file.
void ReadColors(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties);

}  // namespace orvex
