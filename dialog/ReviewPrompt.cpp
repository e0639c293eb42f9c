#include "dialog/ReviewPrompt.h"

#include <algorithm>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

bool HasFiles(const PageReview& page) {
    return page.review.added + page.review.left > 0;
}

std::wstring AddText(std::size_t count) {
    switch (count) {
        case 0:
            return Text(text::kReviewAddNone);
        case 1:
            return Text(text::kReviewAddOne);
        default:
            return FormatText(Text(text::kReviewAddSeveral), {count});
    }
}

}  // namespace

std::optional<ReportPrompt> ReviewPrompt(std::span<const PageReview> pages) {
    const bool isOneOfSeveral = std::ranges::count_if(pages, HasFiles) > 1;
    std::size_t added = 0;
    std::size_t left = 0;
    ReportPrompt prompt;
    for (const auto& [caption, review] : pages) {
        added += review.added;
        left += review.left;
        for (const OddFiles& odd : review.odd) {
            prompt.sections.push_back(
                {isOneOfSeveral ? FormatText(Text(text::kReviewOfPage), {caption, odd.heading}) : odd.heading,
                 odd.lines});
        }
    }
    if (prompt.sections.empty()) {
        return std::nullopt;
    }
    prompt.caption = Text(text::kReviewCaption);
    prompt.summary = FormatText(Text(text::kReviewSummary), {added}) +
                     (left == 0 ? std::wstring() : FormatText(Text(text::kReviewLeft), {left}));
    prompt.yesText = AddText(added);
    prompt.noText = Text(text::kReviewGoBack);
    return prompt;
}

std::set<std::size_t> OddRecords(const AddingReview& review) {
    std::set<std::size_t> records;
    for (const OddFiles& odd : review.odd) {
        records.insert(odd.records.begin(), odd.records.end());
    }
    return records;
}

}  // namespace orvex
