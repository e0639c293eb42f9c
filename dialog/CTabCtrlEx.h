#pragma once
#include <QIcon>
#include <QTabWidget>
#include <memory>
#include <set>
#include <span>
#include <vector>

#include "dialog/page/AddFilesPage.h"

namespace orvex {

/// Tab control of the Add Files dialog: creates the pages from their descriptions and shows the page and the
/// image of the selected tab. Tab indices are dense: pages that are switched off take none.
class CTabCtrlEx : public QTabWidget {
    Q_OBJECT

  public:
    /// `prompts` tells of a handler that failed; it outlives the tabs.
    explicit CTabCtrlEx(UserPrompts& prompts, QWidget* parent = nullptr);
    ~CTabCtrlEx() override;

    /// Adds the tabs of the pages that are switched on, in the order of the descriptions. A page that cannot
    /// be created is reported to the user and leaves an empty tab. `context` and what it refers to outlive
    /// the tabs.
    void Build(std::span<const PageDescription> descriptions, const PageContext& context);

    /// Selects a tab; an index out of range deselects all.
    void Select(int index);
    /// Index of the tab whose page is shown; -1 if none.
    int ShownIndex() const { return shown_; }
    PageKind KindOfTab(int index) const { return tabs_[static_cast<std::size_t>(index)].kind; }

    /// The pages that could be created, in the order of the tabs.
    std::vector<AddFilesPage*> Pages() const;
    /// The page shown; null if none.
    AddFilesPage* CurrentPage() const;
    /// Gives tabs and controls letters that differ from `used` and among what can be seen at once: the tabs
    /// and one page.
    void AssignMnemonicsBeside(std::set<QChar> used);
    /// Caption of a page's tab, without a mnemonic.
    std::wstring CaptionOf(const AddFilesPage* page) const;
    /// Index of a page's tab; -1 if it has none.
    int TabOfPage(const AddFilesPage* page) const;

  private:
    class Bar;
    struct Tab {
        PageKind kind;
        int image;
        AddFilesPage* page;  ///< null if it could not be created; owned by its parent widget
    };

    void AddTab(const PageDescription& description, const PageContext& context);
    AddFilesPage* CreatePage(const PageDescription& description, const PageContext& context);
    void OnSelectionChanged(int index);
    void RefreshImages();

    std::vector<Tab> tabs_;
    const std::vector<QIcon>* images_ = nullptr;
    Bar* bar_;
    int shown_ = -1;
};

}  // namespace orvex
