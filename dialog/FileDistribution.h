#pragma once
#include <functional>
#include <utility>

#include "dialog/page/AddFilesPage.h"

namespace orvex {

class CTabCtrlEx;
class UserPrompts;

/// Sends files and folders to the pages that list them: those that the host names, those that are dropped on
/// the dialog, and those that a page has found and does not list itself.
class FileDistribution final : public FileOffers {
  public:
    /// All outlive the object.
    FileDistribution(CTabCtrlEx& tabs, const DialogProgress& progress, UserPrompts& prompts)
        : tabs_(tabs), progress_(progress), prompts_(prompts) {}

    /// The page that is shown, when it takes the file or folder, else the first that does; null for none.
    AddFilesPage* PageFor(const std::wstring& path) const;
    /// The page that is shown, when it takes one of these; else the first that does; null for none.
    AddFilesPage* PageForAny(const std::vector<std::wstring>& paths) const;
    /// Shows a page and adds files to it.
    void AddTo(AddFilesPage& page, const std::vector<std::wstring>& paths) const;
    /// Adds each to its PageFor and shows the page of the first. Escape ends all of it.
    void AddEach(const std::vector<std::wstring>& paths) const;

    std::vector<std::wstring> TakeListed(std::vector<std::wstring>& files) const override;
    void Offer(AddFilesPage& finder, const std::vector<std::wstring>& files) override;

  private:
    /// A page and what it gets.
    using Share = std::pair<AddFilesPage*, std::vector<std::wstring>>;

    std::vector<Share> Shares(const std::vector<std::wstring>& paths,
                              const std::function<AddFilesPage*(const std::wstring& path)>& pageFor) const;
    std::wstring Question(const std::vector<Share>& shares) const;
    void Add(const std::vector<Share>& shares) const;

    CTabCtrlEx& tabs_;
    const DialogProgress& progress_;
    UserPrompts& prompts_;
};

}  // namespace orvex
