#pragma once
#include <map>
#include <span>
#include <string>

#include "las/LasRow.h"

namespace orvex {

struct LasLayerRules {
    bool append = true;      ///< files may go into layers that the project has already
    bool ignoreCrs = false;  ///< files of different CRS may share a layer
};

/// What two files must share to lie in one layer: the compatibility group and the EPSG code of their CRS.
std::string LayerKeyOf(const CrsDescription& crs);

/// Gives every loadable row its group (numbered from 1 in the order of the rows) and its layer, in one pass.
/// Files of one key share a layer: the first existing one (by name) of that key when appending, else a new
/// one. New layers are named "LAS Layer_" and the smallest numbers from 1 on that no layer in the project
/// uses (in any letter case), in the order of the rows. With `ignoreCrs` all files share one layer; appending
/// prefers one that is compatible with some file. `existing`: name to WKT.
void AssignLayers(std::span<LasRow> rows, const std::map<std::wstring, std::wstring>& existing,
                  const LasLayerRules& rules);

}  // namespace orvex
