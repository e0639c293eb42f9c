#pragma once
#include <string>

#include "dialog/page/LoadFlag.h"
#include "las/LasInspection.h"

namespace orvex {

/// One file of the LAS page. What a cell shows is computed from it when asked for.
struct LasRow {
    LasInspection inspection;
    std::wstring layer;        ///< the layer that the file goes into; empty when it cannot be loaded
    bool layerExists = false;  ///< the project has that layer already
    unsigned group = 0;        ///< files of one number can share a layer; 0: none
};

LoadFlag LoadFlagOf(const LasRow& row);

/// Everything there is to say about a row's state, one finding a line; empty when all is well.
std::wstring FindingsText(const LasRow& row);

}  // namespace orvex
