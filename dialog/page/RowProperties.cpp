#include "dialog/page/RowProperties.h"

#include <algorithm>
#include <map>
#include <string>

#include "crs/LayerAssignment.h"
#include "dialog/page/ListModel.h"
#include "support/Text.h"

namespace orvex {
namespace {

bool HasCrs(const RowTraits& row) {
    return row.crs != nullptr && !row.crs->sourceWkt.empty();
}

std::wstring KeyOf(const RowTraits& traits, Likeness likeness) {
    switch (likeness) {
        case Likeness::Crs:
            return traits.crs == nullptr ? std::wstring() : L"CRS " + FromUtf8(LayerKeyOf(*traits.crs));
        case Likeness::Layer:
            return traits.layer;
        case Likeness::Folder:
            break;
    }
    return FolderOf(traits.path);
}

template <typename Test>
std::vector<std::size_t> RecordsThat(const ListRows& rows, Test test) {
    std::vector<std::size_t> records;
    for (std::size_t record = 0; record < rows.Count(); ++record) {
        if (test(rows.Traits(record))) {
            records.push_back(record);
        }
    }
    return records;
}

}  // namespace

// Rows share the descriptions of their CRSs, so that few keys are made.
std::string MostFrequentCrs(const ListRows& rows) {
    std::map<CrsPtr, std::size_t> byCrs;
    for (std::size_t record = 0; record < rows.Count(); ++record) {
        if (const RowTraits row = rows.Traits(record); HasCrs(row)) {
            ++byCrs[row.crs];
        }
    }
    std::map<std::string, std::size_t> byKey;
    for (const auto& [crs, count] : byCrs) {
        byKey[LayerKeyOf(*crs)] += count;
    }
    const auto most = std::ranges::max_element(byKey, {}, [](const auto& entry) { return entry.second; });
    return most == byKey.end() ? std::string() : most->first;
}

bool HasProperty(const RowTraits& row, RowProperty property, const std::string& mostFrequentCrs) {
    switch (property) {
        case RowProperty::Findings:
            return row.flag == LoadFlag::NotLoadable || !row.findings.empty();
        case RowProperty::Warnings:
            return row.flag == LoadFlag::Findings && !row.hasErrors;
        case RowProperty::Errors:
            return row.hasErrors;
        case RowProperty::WithoutCrs:
            return row.lacksCrs;
        case RowProperty::OtherCrs:
            return HasCrs(row) && LayerKeyOf(*row.crs) != mostFrequentCrs;
        case RowProperty::InProject:
            break;
    }
    return row.inProject;
}

std::vector<std::size_t> RecordsWith(const ListRows& rows, RowProperty property) {
    const std::string most = MostFrequentCrs(rows);
    return RecordsThat(rows, [&](const RowTraits& row) { return HasProperty(row, property, most); });
}

PropertyCounts::PropertyCounts(const ListRows& rows) {
    const std::string most = MostFrequentCrs(rows);
    for (std::size_t record = 0; record < rows.Count(); ++record) {
        const RowTraits row = rows.Traits(record);
        for (std::size_t property = 0; property < counts_.size(); ++property) {
            counts_[property] += HasProperty(row, static_cast<RowProperty>(property), most) ? 1 : 0;
        }
    }
}

std::vector<std::size_t> RecordsLike(const ListRows& rows, std::size_t record, Likeness likeness) {
    const std::wstring key = KeyOf(rows.Traits(record), likeness);
    return key.empty() ? std::vector<std::size_t>()
                       : RecordsThat(rows, [&](const RowTraits& row) { return KeyOf(row, likeness) == key; });
}

std::vector<std::size_t> RecordsWithFinding(const ListRows& rows, const char* code) {
    return RecordsThat(rows, [&](const RowTraits& row) {
        return std::ranges::any_of(row.findings,
                                   [&](const char* one) { return std::string_view(one) == code; });
    });
}

}  // namespace orvex
