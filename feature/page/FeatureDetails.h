#pragma once
#include <QString>
#include <cstddef>
#include <span>

#include "dialog/details/DetailsPanel.h"
#include "feature/FeatureRow.h"

namespace orvex {

/// What the details pane of the feature page shows: everything about one file, or the totals of several.
/// `records`: indices into `rows`, at least one; `captionColour`: of the names of fields.
DetailsContent FeatureDetailsContent(std::span<const FeatureRow> rows, std::span<const std::size_t> records,
                                     const QString& captionColour);

}  // namespace orvex
