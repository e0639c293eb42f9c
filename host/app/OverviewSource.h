#pragma once
#include <gdal_priv.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "host/app/RasterOverview.h"

namespace orvex {

/// What the bands of a raster mean to a picture.
enum class OverviewColours { Grey, Palette, Rgb };

/// The bands that a picture is made of, at the level of resolution that is read.
struct OverviewSource {
    OverviewColours colours = OverviewColours::Grey;
    std::vector<GDALRasterBand*> bands;  ///< of the dataset; one, or three for Rgb
    GDALRasterBand* alpha = nullptr;     ///< an alpha band or the mask of the whole dataset; null for none
    int level = -1;                      ///< the reduced level that is read; -1 for full resolution
    int width = 0;                       ///< pixels of the picture
    int height = 0;
    bool averages = false;  ///< pixels are averaged, where that is cheap and means something

    /// A band at the level that is read.
    GDALRasterBand* AtLevel(GDALRasterBand* band) const;
};

/// Chooses bands and level. None when that is more work than the limits allow.
std::optional<OverviewSource> ChooseOverviewSource(GDALDataset& dataset, const OverviewLimits& limits);

}  // namespace orvex
