#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "feature/FeatureFindings.h"
#include "feature/FeatureRow.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Keys of the record's map, each given once.
class FeatureKeys {
  public:
    std::wstring Take(const std::wstring& name) {
        unsigned& number = numbers_[ToUpper(name)];
        std::wstring key;
        do {
            ++number;
            key = number == 1 ? name : name + L" (" + std::to_wstring(number) + L")";
        } while (!taken_.insert(ToUpper(key)).second);
        return key;
    }

  private:
    std::unordered_map<std::wstring, unsigned> numbers_;  ///< the last that was tried for a name
    std::unordered_set<std::wstring> taken_;
};

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
    FeatureKeys keys;
    for (FeatureRow& row : rows) {
        if (row.isRead) {
            ApplyRules(row, rules);
        }
        row.place.layer = row.loadable ? keys.Take(FeatureLayerName(row)) : std::wstring();
    }
}

}  // namespace orvex
