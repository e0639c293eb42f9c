#include <algorithm>
#include <string_view>

#include "feature/FeatureFindings.h"
#include "feature/FeatureRow.h"
#include "support/Text.h"
#include "support/UniqueNames.h"

namespace orvex {
namespace {

bool IsOfRules(const Finding& finding) {
    const std::string_view code = finding.code;
    return code == feature_finding::kLayerExists.code || code == feature_finding::kCrsRequired.code;
}

void Forbid(FeatureRow& row, Finding finding) {
    row.loadable = false;
    row.summary = finding.text;
    row.findings.insert(row.findings.begin(), std::move(finding));
}

void ApplyRules(FeatureRow& row, const FeatureRules& rules) {
    std::erase_if(row.findings, IsOfRules);
    row.loadable = true;
    row.summary = FeatureSummary(row);
    const std::wstring layer = FeatureLayerName(row);
    if (row.kind == FeatureKind::Shp && rules.existing.contains(layer)) {
        Forbid(row, MakeFinding(feature_finding::kLayerExists, {layer}));
    }
    // A CRS that cannot be read is as unknown as none.
    if (rules.requireCrs && row.crs->prettyWkt.empty()) {
        Forbid(row, MakeFinding(feature_finding::kCrsRequired));
    }
}

}  // namespace

void ApplyFeatureRules(std::vector<FeatureRow>& rows, const FeatureRules& rules) {
    UniqueNames keys;
    for (FeatureRow& row : rows) {
        if (row.isRead) {
            ApplyRules(row, rules);
        }
        row.place.layer = row.loadable ? keys.Take(FeatureLayerName(row)) : std::wstring();
    }
}

}  // namespace orvex
