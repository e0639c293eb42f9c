#pragma once
#include <cstdint>
#include <string>

#include "orvexcommon/OrvexUtilities.h"

namespace orvex::testing {

/// What a function of OrvexUtilities says of a CAD or KML file.
struct FeatureAnswer {
    bool isRead = false;
    std::uint64_t features = 99;
    tagOrvexExtent extent{9, 9, 9, 9};
    OrvexLayerMap layers{{L"of another file", 1}};
    std::wstring message = L"of another file";
};

using FeatureQuestion = bool (*)(const std::wstring&, std::uint64_t&, tagOrvexExtent&, OrvexLayerMap&,
                                 std::wstring&);

inline FeatureAnswer Ask(FeatureQuestion question, const std::wstring& path) {
    FeatureAnswer answer;
    answer.isRead = question(path, answer.features, answer.extent, answer.layers, answer.message);
    return answer;
}

}  // namespace orvex::testing
