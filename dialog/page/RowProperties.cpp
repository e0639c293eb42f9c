#include "dialog/page/RowProperties.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>

#include "crs/LayerAssignment.h"
#include "dialog/page/ListModel.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr int kNoCrs = -1;

/// Numbers CRSs so that compatible ones have one number. Rows share their descriptions, so that few keys are
/// made.
class CrsNumbers {
  public:
    int Of(const CrsPtr& crs) {
        if (crs == nullptr || crs->sourceWkt.empty()) {
            return kNoCrs;
        }
        const auto [entry, isNew] = byCrs_.try_emplace(crs.get(), 0);
        if (isNew) {
            entry->second =
                byKey_.try_emplace(LayerKeyOf(*crs), static_cast<int>(byKey_.size())).first->second;
        }
        return entry->second;
    }

  private:
    std::unordered_map<const CrsDescription*, int> byCrs_;
    std::map<std::string, int> byKey_;
};

/// The number that most have; the first of several, kNoCrs when none has any.
int MostFrequent(const std::vector<int>& numbers) {
    std::map<int, std::size_t> counts;
    for (const int number : numbers) {
        counts[number] += number == kNoCrs ? 0 : 1;
    }
    const auto most = std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    return most == counts.end() || most->second == 0 ? kNoCrs : most->first;
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

RowProperties::RowProperties(const ListRows& rows) : bits_(rows.Count()) {
    CrsNumbers numbers;
    std::vector<int> crs;
    crs.reserve(bits_.size());
    for (std::size_t record = 0; record < bits_.size(); ++record) {
        const RowTraits traits = rows.Traits(record);
        Set(record, RowProperty::Findings, traits.flag == LoadFlag::NotLoadable || !traits.findings.empty());
        Set(record, RowProperty::Errors, traits.hasErrors);
        Set(record, RowProperty::Warnings, traits.flag == LoadFlag::Findings && !traits.hasErrors);
        Set(record, RowProperty::WithoutCrs, traits.lacksCrs);
        Set(record, RowProperty::InProject, traits.inProject);
        crs.push_back(numbers.Of(traits.crs));
    }
    SetOtherCrs(crs);
}

void RowProperties::SetOtherCrs(const std::vector<int>& crsOfRecords) {
    const int most = MostFrequent(crsOfRecords);
    for (std::size_t record = 0; record < crsOfRecords.size(); ++record) {
        const int crs = crsOfRecords[record];
        Set(record, RowProperty::OtherCrs, crs != kNoCrs && crs != most);
    }
}

void RowProperties::Set(std::size_t record, RowProperty property, bool value) {
    if (value) {
        bits_[record] |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(property));
        ++counts_[static_cast<std::size_t>(property)];
    }
}

bool RowProperties::Has(std::size_t record, RowProperty property) const {
    return record < bits_.size() && (bits_[record] >> static_cast<unsigned>(property) & 1U) != 0;
}

std::vector<std::size_t> RowProperties::Records(RowProperty property) const {
    std::vector<std::size_t> records;
    for (std::size_t record = 0; record < bits_.size(); ++record) {
        if (Has(record, property)) {
            records.push_back(record);
        }
    }
    return records;
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
