#pragma once
#include <map>
#include <span>
#include <string>

#include "crs/LayerAssignment.h"
#include "las/LasRow.h"

namespace orvex {

using LasLayerRules = LayerRules;

/// Gives every loadable row its group and its layer (see PlaceInLayers); new layers are named "LAS Layer_"
/// and a number. `existing`: name to WKT.
void AssignLayers(std::span<LasRow> rows, const std::map<std::wstring, std::wstring>& existing,
                  const LasLayerRules& rules);

}  // namespace orvex
