#pragma once
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "crs/CrsDescription.h"
#include "support/Finding.h"

namespace orvex {

/// What a list can be counted, filtered and selected by, whatever the type of its rows.
struct RowTraits {
    LoadFlag flag = LoadFlag::Good;
    bool hasErrors = false;  ///< cannot be loaded, or a finding says that it is damaged
    bool lacksCrs = false;   ///< loadable, but no CRS is stated
    bool inProject = false;  ///< the project has the file already
    CrsPtr crs = {};         ///< null for a file that cannot be loaded
    std::wstring path = {};
    std::wstring layer = {};
    std::vector<const char*> findings = {};  ///< codes, each once, worst first
};

/// A row of a page that lists files.
template <typename Row>
concept FileRow = requires(const Row& row) {
    LoadFlagOf(row);
    row.findings.front().severity;
    row.crs->sourceWkt;
    row.place.inProject;
    row.path;
    row.loadable;
    row.summary;
};

template <FileRow Row>
RowTraits TraitsOf(const Row& row) {
    RowTraits traits{.flag = LoadFlagOf(row),
                     .inProject = row.place.inProject,
                     .path = row.path,
                     .layer = row.place.layer};
    const bool isRead = traits.flag != LoadFlag::Awaited;
    const bool isLoadable = traits.flag != LoadFlag::NotLoadable;
    traits.crs = isRead && isLoadable ? row.crs : nullptr;
    traits.lacksCrs = traits.crs != nullptr && traits.crs->sourceWkt.empty();
    traits.hasErrors = !isLoadable;
    for (const Finding& finding : row.findings) {
        traits.hasErrors = traits.hasErrors || finding.severity == FindingSeverity::Error;
        const auto isSame = [&](std::string_view code) { return code == finding.code; };
        if (std::ranges::none_of(traits.findings, isSame)) {
            traits.findings.push_back(finding.code);
        }
    }
    return traits;
}

}  // namespace orvex
