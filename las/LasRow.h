#pragma once
#include <string>

#include "las/LasInspection.h"

namespace orvex {

/// One file of the LAS page. What a cell shows is computed from it when asked for.
struct LasRow {
    LasInspection inspection;
    std::wstring layer;        ///< the layer that the file goes into; empty when it cannot be loaded
    bool layerExists = false;  ///< the project has that layer already
    unsigned group = 0;        ///< files of one number can share a layer; 0: none
};

/// How a row stands, worst last; each state has an image in the dialog's list.
enum class LasLoadFlag { Good, Findings, NotLoadable };

LasLoadFlag LoadFlagOf(const LasRow& row);

/// Index of the state's image in the dialog's image list.
int LoadFlagImage(LasLoadFlag flag);

/// Everything there is to say about a row's state, one finding a line; empty when all is well.
std::wstring FindingsText(const LasRow& row);

}  // namespace orvex
