#pragma once
#include <QString>
#include <cstddef>
#include <span>

#include "dialog/details/DetailsPanel.h"
#include "photo/PhotoRow.h"

namespace orvex {

/// What the details pane of the photo page shows: everything about one photo with its `preview` (HTML), or
/// the totals of several. `records`: indices into `rows`, at least one; `captionColour`: of the names of
/// fields.
DetailsContent PhotoDetailsContent(std::span<const PhotoRow> rows, std::span<const std::size_t> records,
                                   const QString& preview, const QString& captionColour);

}  // namespace orvex
