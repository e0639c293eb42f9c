#include "dialog/RecordResults.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <unordered_set>
#include <utility>

#include "orvexcommon/AddFilesParams.h"
#include "record/RecordMembers.h"
#include "support/PathSet.h"
#include "support/UniqueNames.h"

namespace orvex {
namespace {

constexpr FilesByFolder AddFilesParams::*kFileLists[] = {
    &AddFilesParams::lasFiles, &AddFilesParams::rasterFiles, &AddFilesParams::demFiles};
constexpr TextByName AddFilesParams::*kTexts[] = {
    &AddFilesParams::presignedUrlLayers,   &AddFilesParams::cloudLasLayers,
    &AddFilesParams::cloudLasLayerValues2, &AddFilesParams::cloudLasLayerValues3,
    &AddFilesParams::lasFileLayers,        &AddFilesParams::rasterFileLayers,
    &AddFilesParams::demFileLayers};

void AppendNew(std::vector<std::wstring> added, std::vector<std::wstring>& names) {
    std::unordered_set<std::wstring> known(names.begin(), names.end());
    std::ranges::copy_if(added, std::back_inserter(names),
                         [&](const std::wstring& name) { return known.insert(name).second; });
}

/// Empties lists and maps; options stay.
template <typename Value>
void Clear(Value& value) {
    if constexpr (requires { value.clear(); } && !std::is_same_v<Value, std::wstring>) {
        value.clear();
    }
}

/// `added` becomes the earlier elements and those of its own whose key is new.
template <typename Map>
void PutBehind(Map earlier, Map& added) {
    earlier.merge(added);
    added = std::move(earlier);
}

/// The earlier files keep their keys.
void AddEarlierFeatures(TextByName earlier, TextByName& added) {
    UniqueNames keys;
    PathSet files;
    for (const auto& [key, path] : earlier) {
        keys.Take(key);
        files.Insert(path);
    }
    for (const auto& [key, path] : std::exchange(added, std::move(earlier))) {
        if (!files.Contains(path)) {
            added[keys.Take(key)] = path;
        }
    }
}

}  // namespace

void ClearResults(AddFilesParams& record) {
    for (const RecordMember& row : RecordMembers()) {
        if (row.use == MemberUse::Result) {
            std::visit([&](auto member) { Clear(record.*member); }, row.member);
        }
    }
}

bool HasResults(const AddFilesParams& record) {
    return !record.lasFiles.empty() || !record.rasterFiles.empty() || !record.featureFiles.empty() ||
           !record.demFiles.empty() || !record.photoFiles.empty() || !record.presignedUrlLayers.empty() ||
           !record.cloudLasLayers.empty();
}

void AddEarlierResults(const AddFilesParams& earlier, AddFilesParams& record) {
    for (const auto member : kFileLists) {
        FilesByFolder files = earlier.*member;
        for (auto& [folder, names] : record.*member) {
            AppendNew(std::move(names), files[folder]);
        }
        record.*member = std::move(files);
    }
    for (const auto member : kTexts) {
        // What the user has chosen now counts.
        (record.*member).insert((earlier.*member).begin(), (earlier.*member).end());
    }
    AddEarlierFeatures(earlier.featureFiles, record.featureFiles);
    PutBehind(earlier.lasFileDetails, record.lasFileDetails);
    PutBehind(earlier.rasterFileDetails, record.rasterFileDetails);
    std::vector<std::wstring> photos = earlier.photoFiles;
    AppendNew(std::move(record.photoFiles), photos);
    record.photoFiles = std::move(photos);
}

}  // namespace orvex
