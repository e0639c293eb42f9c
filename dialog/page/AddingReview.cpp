#include "dialog/page/AddingReview.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

#include "dialog/page/ListModel.h"
#include "dialog/page/RowProperties.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

class Review {
  public:
    explicit Review(const ListRows& rows) : rows_(rows) {
        const auto columns = rows.Columns();
        const auto found = std::ranges::find_if(columns, [](const GridColumn& column) {
            const std::string_view name = column.name;
            return name == "summary" || name == "state";
        });
        summary_ = found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
        for (std::size_t record = 0; record < rows.Count(); ++record) {
            traits_.push_back(rows.Traits(record));
        }
    }

    using Test = std::function<bool(std::size_t record, const RowTraits& traits)>;
    using Reason = std::function<std::wstring(std::size_t record)>;

    /// Returns how many there are.
    std::size_t Add(StringId heading, const Test& test, const Reason& reason = {}) {
        OddFiles files;
        for (std::size_t record = 0; record < traits_.size(); ++record) {
            if (test(record, traits_[record])) {
                files.records.push_back(record);
                const std::wstring why = reason ? reason(record) : std::wstring();
                files.lines.push_back(traits_[record].path + (why.empty() ? L"" : L": " + why));
            }
        }
        return Add(heading, std::move(files));
    }

    std::size_t Add(StringId heading, OddFiles files) {
        const std::size_t count = files.lines.size();
        if (count > 0) {
            files.heading = FormatText(Text(heading), {count});
            odd_.push_back(std::move(files));
        }
        return count;
    }

    void AddNote(const std::wstring& note) { odd_.back().heading += L" " + note; }

    std::wstring Summary(std::size_t record) const {
        return summary_ < 0 ? std::wstring() : rows_.CellText(record, summary_);
    }
    std::wstring CrsName(std::size_t record) const {
        const CrsPtr& crs = traits_[record].crs;
        return crs == nullptr ? std::wstring() : crs->name;
    }

    std::vector<OddFiles> Take() { return std::move(odd_); }

  private:
    const ListRows& rows_;
    int summary_ = -1;
    std::vector<RowTraits> traits_;
    std::vector<OddFiles> odd_;
};

}  // namespace

AddingReview ReviewOf(const ListRows& rows, const ReviewRules& rules) {
    Review review(rows);
    const std::string mostFrequentCrs = MostFrequentCrs(rows);
    const auto has = [&](RowProperty property) {
        return [&, property](std::size_t, const RowTraits& row) {
            return HasProperty(row, property, mostFrequentCrs);
        };
    };
    const auto isUnreadable = [](std::size_t, const RowTraits& row) {
        return row.flag == LoadFlag::NotLoadable;
    };
    const auto isDamaged = [](std::size_t, const RowTraits& row) {
        return row.hasErrors && row.flag != LoadFlag::NotLoadable;
    };
    const auto isHidden = [&](std::size_t record, const RowTraits&) { return rows.RowOfRecord(record) < 0; };
    const auto summary = [&](std::size_t record) { return review.Summary(record); };

    AddingReview result;
    const std::size_t unreadable = review.Add(
        rules.passesUnreadable ? text::kReviewUndescribed : text::kReviewUnreadable, isUnreadable, summary);
    if (review.Add(text::kReviewDamaged, isDamaged, summary) > 0 && !rules.damagedNote.empty()) {
        review.AddNote(rules.damagedNote);
    }
    review.Add(text::kReviewInProject, has(RowProperty::InProject));
    review.Add(text::kReviewOtherCrs, has(RowProperty::OtherCrs),
               [&](std::size_t record) { return review.CrsName(record); });
    review.Add(text::kReviewWithoutCrs, has(RowProperty::WithoutCrs));
    review.Add(text::kReviewHidden, isHidden);
    review.Add(text::kReviewUnread, {.heading = {}, .lines = rules.unread, .records = {}});

    const std::size_t refused = rules.passesUnreadable ? 0 : unreadable;
    result.added = rows.Count() - refused;
    result.left = refused + rules.unread.size();
    result.odd = review.Take();
    return result;
}

}  // namespace orvex
