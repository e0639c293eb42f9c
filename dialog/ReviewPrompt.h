#pragma once
// The panel that comes before files are added.
#include <optional>
#include <set>
#include <span>
#include <string>

#include "dialog/page/AddingReview.h"
#include "support/UserPrompts.h"

namespace orvex {

struct PageReview {
    std::wstring caption;  ///< of the page's tab
    AddingReview review;
};

/// Nullopt when nothing is odd.
std::optional<ReportPrompt> ReviewPrompt(std::span<const PageReview> pages);

/// The rows of a page that are odd in any way.
std::set<std::size_t> OddRecords(const AddingReview& review);

}  // namespace orvex
