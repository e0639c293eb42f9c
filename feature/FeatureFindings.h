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
inline constexpr FindingKind kShapesDamaged{
    "shapes-damaged", Warning, text::kShapesDamaged, {.member = "/feature/featureCount"}};
inline constexpr FindingKind kShapesNotAllCounted{
    "shapes-not-all-counted", Warning, text::kShapesNotAllCounted, {.member = "/feature/featureCount"}};
inline constexpr FindingKind kShapeTypesMixed{
    "shape-types-mixed", Warning, text::kShapeTypesMixed, {.member = "/feature/geometry"}};
inline constexpr FindingKind kIndexMissing{
    "shape-index-missing", Warning, text::kShapeIndexMissing, {.sidecar = ".shx"}};
inline constexpr FindingKind kIndexUnreadable{
    "shape-index-unreadable", Warning, text::kShapeIndexUnreadable, {.sidecar = ".shx"}};
inline constexpr FindingKind kIndexCutOff{
    "shape-index-cut-off", Warning, text::kShapeIndexCutOff, {.sidecar = ".shx"}};
inline constexpr FindingKind kIndexContradicts{
    "shape-index-contradicts", Warning, text::kShapeIndexContradicts, {.sidecar = ".shx"}};
inline constexpr FindingKind kTableMissing{
    "attributes-missing", Warning, text::kAttributesMissing, {.sidecar = ".dbf"}};
inline constexpr FindingKind kTableUnreadable{
    "attributes-unreadable", Warning, text::kAttributesUnreadable, {.sidecar = ".dbf"}};
inline constexpr FindingKind kTableContradicts{"attributes-contradict",
                                               Warning,
                                               text::kAttributesContradict,
                                               {.member = "/feature/fields", .sidecar = ".dbf"}};
inline constexpr FindingKind kTableCutOff{
    "attributes-cut-off", Warning, text::kAttributesCutOff, {.sidecar = ".dbf"}};
inline constexpr FindingKind kTableCount{
    "attributes-count", Warning, text::kAttributesCount, {.sidecar = ".dbf"}};
inline constexpr FindingKind kEncodingUnknown{"attributes-encoding-unknown",
                                              Warning,
                                              text::kAttributesEncodingUnknown,
                                              {.member = "/feature/fields", .sidecar = ".dbf"}};
inline constexpr FindingKind kPartlyRead{"partly-read", Warning, {}};
inline constexpr FindingKind kNoFeatures{
    "no-features", Warning, text::kFeatureNone, {.member = "/feature/featureCount"}};
inline constexpr FindingKind kExtentInverted{
    "extent-inverted", Warning, text::kLasExtentInverted, {.member = "/feature/extent"}};
inline constexpr FindingKind kExtentNotFinite{
    "extent-not-finite", Warning, text::kLasExtentNotFinite, {.member = "/feature/extent"}};
inline constexpr FindingKind kNoCrs{
    "no-crs", Note, text::kFeatureNoPrj, {.member = "/crs", .sidecar = ".prj"}};
inline constexpr FindingKind kCrsUnreadable{
    "crs-unreadable", Warning, text::kCrsUnreadable, {.member = "/crs", .sidecar = ".prj"}};
inline constexpr FindingKind kPrjUnreadable{
    "prj-unreadable", Warning, text::kPrjUnreadable, {.member = "/crs", .sidecar = ".prj"}};
// Of the page's rules.
inline constexpr FindingKind kLayerExists{"layer-exists", Error, text::kFeatureLayerExists};
inline constexpr FindingKind kCrsRequired{"crs-required", Error, text::kFeatureWithoutCrs};
}  // namespace feature_finding

/// Findings that follow from what was read of a file.
std::vector<Finding> ValidateFeatures(const FeatureRow& row);

}  // namespace orvex
