#include "dialog/page/ListHistory.h"

#include <utility>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kMostChanges = 100;
constexpr std::size_t kMostPaths = 300'000;

}  // namespace

std::wstring ListChangeText(const ListChange& change) {
    const bool isOne = change.entries.size() == 1;
    const bool added = change.kind == ListChange::Kind::Added;
    const StringId one = added ? text::kOneFileAdded : text::kOneFileRemoved;
    const StringId several = added ? text::kSeveralFilesAdded : text::kSeveralFilesRemoved;
    return isOne ? Text(one) : FormatText(Text(several), {change.entries.size()});
}

void ListHistory::Record(ListChange change) {
    if (change.entries.empty()) {
        return;
    }
    while (CanRedo()) {
        paths_ -= changes_.back().entries.size();
        changes_.pop_back();
    }
    paths_ += change.entries.size();
    changes_.push_back(std::move(change));
    while (changes_.size() > 1 && (changes_.size() > kMostChanges || paths_ > kMostPaths)) {
        paths_ -= changes_.front().entries.size();
        changes_.pop_front();
    }
    done_ = changes_.size();
}

void ListHistory::Clear() {
    *this = {};
}

std::vector<std::size_t> NewIndices(std::size_t before, const std::vector<std::size_t>& places) {
    std::vector<std::size_t> indices(before + places.size());
    std::size_t old = 0;
    std::size_t appended = 0;
    for (std::size_t index = 0; index < indices.size(); ++index) {
        const bool isDue = appended < places.size() && (places[appended] <= index || old == before);
        indices[isDue ? before + appended++ : old++] = index;
    }
    return indices;
}

}  // namespace orvex
