#pragma once
#include <QString>
#include <cstddef>
#include <span>

#include "cloud/CloudRow.h"
#include "dialog/details/DetailsPanel.h"

namespace orvex {

/// The details pane of the cloud page: everything about one layer, with what a look inside has found, or the
/// totals of several. `records`: indices into `rows`, at least one; `captionColour`: of the names of fields.
DetailsContent CloudDetailsContent(std::span<const CloudRow> rows, std::span<const std::size_t> records,
                                   const QString& captionColour);

}  // namespace orvex
