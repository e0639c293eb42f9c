#pragma once
#include <QString>
#include <cstddef>
#include <span>

#include "dialog/details/DetailsPanel.h"
#include "las/LasRow.h"

namespace orvex {

/// The details pane of the LAS page: everything about one file, or the totals of several. `records`: indices
/// into `rows`, at least one; `captionColour`: of the names of fields.
DetailsContent LasDetailsContent(std::span<const LasRow> rows, std::span<const std::size_t> records,
                                 const QString& captionColour);

}  // namespace orvex
