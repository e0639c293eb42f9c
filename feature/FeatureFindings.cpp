#include "feature/FeatureFindings.h"

#include <cmath>
#include <optional>
#include <span>

#include "crs/ExtentFindings.h"

namespace orvex {
namespace {

using Findings = std::vector<Finding>;

void CheckCrs(const FeatureRow& row, Findings& findings) {
    if (row.crs->sourceWkt.empty()) {
        findings.push_back(MakeFinding(feature_finding::kNoCrs));
    } else if (row.crs->prettyWkt.empty()) {
        findings.push_back(MakeFinding(feature_finding::kCrsUnreadable));
    }
}

void CheckExtentOf(const FeatureRow& row, Findings& findings) {
    const std::span<const double, 4> extent(*row.extent);
    const auto low = extent.first<2>();
    const auto high = extent.last<2>();
    const std::wstring infinite = AxesWhere(
        2, [&](std::size_t axis) { return !std::isfinite(low[axis]) || !std::isfinite(high[axis]); });
    if (!infinite.empty()) {
        findings.push_back(MakeFinding(feature_finding::kExtentNotFinite, {infinite}));
    }
    const std::wstring inverted = AxesWhere(2, [&](std::size_t axis) { return low[axis] > high[axis]; });
    if (!inverted.empty()) {
        findings.push_back(MakeFinding(feature_finding::kExtentInverted, {inverted}));
    }
    if (std::optional<Finding> finding = CheckExtent(*row.crs, low, high)) {
        finding->where.member = "/feature/extent";
        findings.push_back(*std::move(finding));
    }
}

}  // namespace

std::vector<Finding> ValidateFeatures(const FeatureRow& row) {
    Findings findings;
    if (row.featureCount == 0) {
        findings.push_back(MakeFinding(feature_finding::kNoFeatures));
    }
    if (row.extent) {
        CheckExtentOf(row, findings);
    }
    CheckCrs(row, findings);
    return findings;
}

}  // namespace orvex
