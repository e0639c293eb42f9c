#pragma once
// Which layer of the project each file of a page goes into.
#include <map>
#include <span>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"

namespace orvex {

struct LayerRules {
    bool append = true;      ///< files may go into layers that the project has already
    bool ignoreCrs = false;  ///< files of different CRS may share a layer
};

/// Where one file goes. Empty for a file that cannot be loaded.
struct LayerPlace {
    std::wstring layer;
    bool exists = false;  ///< the project has that layer already
    unsigned group = 0;   ///< files of one number can share a layer; 0: none
};

/// What two files must share to lie in one layer: the compatibility group and the EPSG code of their CRS.
std::string LayerKeyOf(const CrsDescription& crs);

/// The place of every file, in their order and in one pass. `files`: the CRS of each, null for one that
/// cannot be loaded. Groups are numbered from 1 in the order of the files. Files of one key share a layer:
/// the first existing one (by name) of that key when appending, else a new one. New layers are named `prefix`
/// and the smallest numbers from 1 on that no layer in the project uses (in any letter case), in the order of
/// the files. With `ignoreCrs` all files share one layer; appending prefers one that is compatible with some
/// file. `existing`: name to WKT.
std::vector<LayerPlace> PlaceInLayers(std::span<const CrsPtr> files,
                                      const std::map<std::wstring, std::wstring>& existing,
                                      const LayerRules& rules, const std::wstring& prefix);

}  // namespace orvex
