#pragma once
#include <vector>

#include "feature/FeatureRow.h"

namespace orvex {

namespace feature_finding {
using enum FindingSeverity;

// A reader can still load the shapes: the .shp file alone says where they are and what they look like. Only
// what keeps it from being read at all is an error.
inline constexpr FindingKind kUnreadable{"unreadable", Error, {}};
inline constexpr FindingKind kShapesCutOff{"shapes-cut-off", Warning, text::kShapesCutOff};
inline constexpr FindingKind kShapesDamaged{"shapes-damaged", Warning, text::kShapesDamaged};
inline constexpr FindingKind kShapesNotAllCounted{"shapes-not-all-counted", Warning,
                                                  text::kShapesNotAllCounted};
inline constexpr FindingKind kShapeTypesMixed{"shape-types-mixed", Warning, text::kShapeTypesMixed};
inline constexpr FindingKind kIndexMissing{"shape-index-missing", Warning, text::kShapeIndexMissing};
inline constexpr FindingKind kIndexUnreadable{"shape-index-unreadable", Warning, text::kShapeIndexUnreadable};
inline constexpr FindingKind kIndexCutOff{"shape-index-cut-off", Warning, text::kShapeIndexCutOff};
inline constexpr FindingKind kIndexContradicts{"shape-index-contradicts", Warning,
                                               text::kShapeIndexContradicts};
inline constexpr FindingKind kTableMissing{"attributes-missing", Warning, text::kAttributesMissing};
inline constexpr FindingKind kTableUnreadable{"attributes-unreadable", Warning, text::kAttributesUnreadable};
inline constexpr FindingKind kTableContradicts{"attributes-contradict", Warning, text::kAttributesContradict};
inline constexpr FindingKind kTableCutOff{"attributes-cut-off", Warning, text::kAttributesCutOff};
inline constexpr FindingKind kTableCount{"attributes-count", Warning, text::kAttributesCount};
inline constexpr FindingKind kEncodingUnknown{"attributes-encoding-unknown", Warning,
                                              text::kAttributesEncodingUnknown};
inline constexpr FindingKind kPartlyRead{"partly-read", Warning, {}};
inline constexpr FindingKind kNoFeatures{"no-features", Warning, text::kFeatureNone};
inline constexpr FindingKind kExtentInverted{"extent-inverted", Warning, text::kLasExtentInverted};
inline constexpr FindingKind kExtentNotFinite{"extent-not-finite", Warning, text::kLasExtentNotFinite};
inline constexpr FindingKind kNoCrs{"no-crs", Note, text::kFeatureNoPrj};
inline constexpr FindingKind kCrsUnreadable{"crs-unreadable", Warning, text::kCrsUnreadable};
inline constexpr FindingKind kPrjUnreadable{"prj-unreadable", Warning, text::kPrjUnreadable};
// Of the page's rules.
inline constexpr FindingKind kLayerExists{"layer-exists", Error, text::kFeatureLayerExists};
inline constexpr FindingKind kCrsRequired{"crs-required", Error, text::kFeatureWithoutCrs};
}  // namespace feature_finding

/// Findings that follow from what was read of a file.
std::vector<Finding> ValidateFeatures(const FeatureRow& row);

}  // namespace orvex
