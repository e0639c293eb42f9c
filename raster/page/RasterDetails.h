#pragma once
#include <QString>
#include <cstddef>
#include <span>

#include "dialog/details/DetailsPanel.h"
#include "raster/RasterRow.h"

namespace orvex {

/// What the details pane of a page shows: everything about one file, or the totals of several. `records`:
/// indices into `rows`, at least one; `captionColour`: of the names of fields.
DetailsContent RasterDetailsContent(std::span<const RasterRow> rows, std::span<const std::size_t> records,
                                    RasterUse use, const QString& captionColour);

}  // namespace orvex
