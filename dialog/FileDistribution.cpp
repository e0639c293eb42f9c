#include "dialog/FileDistribution.h"

#include <algorithm>
#include <map>

#include "dialog/CTabCtrlEx.h"
#include "dialog/DialogProgress.h"
#include "support/DataKinds.h"
#include "support/Format.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

AddFilesPage* FirstThatTakes(const std::vector<AddFilesPage*>& pages, const std::wstring& path) {
    const auto found =
        std::ranges::find_if(pages, [&](const AddFilesPage* page) { return page->Accepts(path); });
    return found == pages.end() ? nullptr : *found;
}

/// The first page that takes a file, for many files: one kind of name is asked about once, because a page may
/// look at the file itself, on a drive that may be slow.
class Takers {
  public:
    explicit Takers(std::vector<AddFilesPage*> pages) : pages_(std::move(pages)) {}

    AddFilesPage* Of(const std::wstring& path) {
        const std::wstring kind = IsNamedByFolder(path) ? ToUpper(FileNameOf(path)) : UpperExtensionOf(path);
        const auto known = byKind_.find(kind);
        return known != byKind_.end() ? known->second
                                      : byKind_.emplace(kind, FirstThatTakes(pages_, path)).first->second;
    }

  private:
    std::vector<AddFilesPage*> pages_;
    std::map<std::wstring, AddFilesPage*> byKind_;
};

}  // namespace

AddFilesPage* FileDistribution::PageFor(const std::wstring& path) const {
    std::vector<AddFilesPage*> pages = tabs_.Pages();
    if (AddFilesPage* current = tabs_.CurrentPage()) {
        pages.insert(pages.begin(), current);
    }
    return FirstThatTakes(pages, path);
}

AddFilesPage* FileDistribution::PageForAny(const std::vector<std::wstring>& paths) const {
    AddFilesPage* page = nullptr;
    for (const std::wstring& path : paths) {
        AddFilesPage* taker = PageFor(path);
        const bool isBetter = page == nullptr || (taker != nullptr && taker == tabs_.CurrentPage());
        page = isBetter ? taker : page;
    }
    return page;
}

void FileDistribution::AddTo(AddFilesPage& page, const std::vector<std::wstring>& paths) const {
    tabs_.Select(tabs_.TabOfPage(&page));
    page.AddPaths(paths);
}

void FileDistribution::AddEach(const std::vector<std::wstring>& paths) const {
    const std::vector<Share> shares =
        Shares(paths, [this](const std::wstring& path) { return PageFor(path); });
    Add(shares);
    if (!shares.empty()) {
        tabs_.Select(tabs_.TabOfPage(shares.front().first));
    }
}

std::vector<std::wstring> FileDistribution::TakeListed(std::vector<std::wstring>& files) const {
    Takers takers(tabs_.Pages());
    const auto rest = std::stable_partition(
        files.begin(), files.end(), [&](const std::wstring& path) { return takers.Of(path) == nullptr; });
    std::vector<std::wstring> taken(std::make_move_iterator(rest), std::make_move_iterator(files.end()));
    files.erase(rest, files.end());
    return taken;
}

void FileDistribution::Offer(AddFilesPage& finder, const std::vector<std::wstring>& files) {
    Takers takers(tabs_.Pages());
    const std::vector<Share> shares =
        Shares(files, [&takers](const std::wstring& path) { return takers.Of(path); });
    if (shares.empty()) {
        return;
    }
    Prompt prompt{Question(shares), Text(text::kOtherFilesCaption), PromptIcon::Question,
                  PromptButtons::YesNo};
    prompt.yesText = Text(text::kOtherFilesAdd);
    if (prompts_.Show(prompt) == PromptAnswer::Yes) {
        Add(shares);
        tabs_.Select(tabs_.TabOfPage(&finder));
    }
}

/// In the order of the paths; those without a page are left out.
std::vector<FileDistribution::Share> FileDistribution::Shares(
    const std::vector<std::wstring>& paths,
    const std::function<AddFilesPage*(const std::wstring& path)>& pageFor) const {
    std::vector<Share> shares;
    for (const std::wstring& path : paths) {
        AddFilesPage* page = pageFor(path);
        const auto share = std::ranges::find(shares, page, &Share::first);
        if (page != nullptr && share == shares.end()) {
            shares.push_back({page, {path}});
        } else if (page != nullptr) {
            share->second.push_back(path);
        }
    }
    return shares;
}

/// A line for each page, under the caption of its tab.
std::wstring FileDistribution::Question(const std::vector<Share>& shares) const {
    std::wstring lines;
    for (const auto& [page, paths] : shares) {
        lines += FormatText(Text(text::kOtherFilesLine), {tabs_.CaptionOf(page), paths.size()}) + L"\n";
    }
    return FormatText(Text(text::kOtherFilesQuestion), {lines});
}

void FileDistribution::Add(const std::vector<Share>& shares) const {
    for (const auto& [page, paths] : shares) {
        AddTo(*page, paths);
        if (progress_.WasStoppedJustNow()) {
            return;  // Escape is meant for all of them
        }
    }
}

}  // namespace orvex
