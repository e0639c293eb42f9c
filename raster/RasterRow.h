#pragma once
#include <map>
#include <string>
#include <vector>

#include "crs/LayerAssignment.h"
#include "dialog/page/LoadFlag.h"
#include "raster/RasterListing.h"

namespace orvex {

/// One file of a page. What a cell shows is computed from it when asked for.
struct RasterRow {
    ListedRaster inspection;
    LayerPlace place;

    const RasterInspection& File() const { return *inspection.file; }
    /// Only files that could be described are passed on.
    bool IsDescribed() const { return inspection.file->loadable; }
};

LoadFlag LoadFlagOf(const RasterRow& row);

/// Everything there is to say about a row's state, one finding a line; empty when all is well.
std::wstring FindingsText(const RasterRow& row);

/// Whether files go into layers of their own CRS, or are as if they had none.
enum class LayerCrs { OfTheFile, None };

/// Gives every row its place among the layers of the project; rows that could not be described get none.
void AssignLayers(std::vector<RasterRow>& rows, const std::map<std::wstring, std::wstring>& existing,
                  const LayerRules& rules, LayerCrs crs, const std::wstring& prefix);

}  // namespace orvex
