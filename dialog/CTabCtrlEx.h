#pragma once
#include <QIcon>
#include <QTabWidget>
#include <memory>
#include <span>
#include <vector>

#include "dialog/page/AddFilesPage.h"

namespace orvex {

/// The tabs of the Add Files dialog: makes the pages from their descriptions, shows the page of the selected
/// tab and its image. Tab indices are dense: a page that is switched off takes none.
class CTabCtrlEx : public QTabWidget {
    Q_OBJECT

  public:
    explicit CTabCtrlEx(QWidget* parent = nullptr);
    ~CTabCtrlEx() override;

    /// Adds the tabs of the pages that are switched on, in the order of the descriptions. A page that cannot
    /// be made is told to the user and leaves an empty tab. `context` and what it refers to outlive the tabs.
    void Build(std::span<const PageDescription> descriptions, const PageContext& context);

    /// Selects a tab; an index that no tab has leaves none selected.
    void Select(int index);
    /// The tab whose page is shown, -1 for none.
    int ShownIndex() const { return shown_; }
    PageKind KindOfTab(int index) const { return tabs_[static_cast<std::size_t>(index)].kind; }

    /// The pages that exist, in the order of the tabs.
    std::vector<AddFilesPage*> Pages() const;
    /// The page shown, null for none.
    AddFilesPage* CurrentPage() const;
    /// The tab of a page, -1 for none.
    int TabOfPage(const AddFilesPage* page) const;

  private:
    class Bar;
    struct Tab {
        PageKind kind;
        int image;
        AddFilesPage* page;  ///< null: could not be made; owned by its parent widget
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
