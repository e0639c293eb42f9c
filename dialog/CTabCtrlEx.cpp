#include "dialog/CTabCtrlEx.h"

#include <QStyleOptionTab>
#include <QTabBar>

#include "dialog/Images.h"
#include "dialog/page/Mnemonics.h"
#include "support/HandlerGuard.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/QtText.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

void ShowFailure(UserPrompts& prompts, const FixedText& text) {
    prompts.Show({text.Get(), {}, PromptIcon::None, PromptButtons::Ok});
}

}  // namespace

// A tab bar always has a current tab once it has tabs; this one can look as if it had none.
class CTabCtrlEx::Bar : public QTabBar {
  public:
    using QTabBar::QTabBar;

    void SetNoneSelected(bool none) {
        noneSelected_ = none;
        update();
    }

  protected:
    void initStyleOption(QStyleOptionTab* option, int index) const override {
        QTabBar::initStyleOption(option, index);
        if (noneSelected_) {
            option->state &= ~QStyle::State_Selected;
        }
    }

  private:
    bool noneSelected_ = false;
};

CTabCtrlEx::CTabCtrlEx(UserPrompts& prompts, QWidget* parent) : QTabWidget(parent), bar_(new Bar) {
    setTabBar(bar_);
    connect(this, &QTabWidget::currentChanged, this,
            Guarded(prompts, L"OnSelectionChanged", [this](int index) { OnSelectionChanged(index); }));
    // With none selected the bar's own current tab can be clicked without a change.
    connect(this, &QTabWidget::tabBarClicked, this, Guarded(prompts, L"OnTabClicked", [this](int index) {
                if (shown_ < 0 && index == currentIndex()) {
                    OnSelectionChanged(index);
                }
            }));
}

CTabCtrlEx::~CTabCtrlEx() = default;

void CTabCtrlEx::Build(std::span<const PageDescription> descriptions, const PageContext& context) {
    images_ = &context.images;
    const QSignalBlocker blocker(this);
    for (const PageDescription& description : descriptions) {
        if (description.pageSwitch == nullptr || context.params->*description.pageSwitch) {
            AddTab(description, context);
        }
    }
}

void CTabCtrlEx::AddTab(const PageDescription& description, const PageContext& context) {
    AddFilesPage* page = CreatePage(description, context);
    QWidget* content = page != nullptr ? static_cast<QWidget*>(page) : new QWidget;
    content->setObjectName(QStringLiteral("page%1").arg(description.templateId));
    if (addTab(content, ToQString(Text(description.caption))) < 0) {
        delete content;
        ShowFailure(context.services.prompts, description.insertFailure);
        return;
    }
    content->setEnabled(false);
    tabs_.push_back({description.kind, description.image, page});
}

AddFilesPage* CTabCtrlEx::CreatePage(const PageDescription& description, const PageContext& context) {
    try {
        if (std::unique_ptr<AddFilesPage> page = description.create(context)) {
            return page.release();
        }
    } catch (...) {
        LogWarning(L"A page of the Add Files dialog could not be created: " + CurrentExceptionText());
    }
    ShowFailure(context.services.prompts, description.createFailure);
    return nullptr;
}

void CTabCtrlEx::Select(int index) {
    const bool exists = index >= 0 && index < count();
    bar_->SetNoneSelected(!exists);
    if (exists && currentIndex() != index) {
        setCurrentIndex(index);
    } else {
        OnSelectionChanged(exists ? index : -1);
    }
}

void CTabCtrlEx::OnSelectionChanged(int index) {
    if (index != shown_) {
        if (QWidget* before = widget(shown_)) {
            before->setEnabled(false);
            before->hide();
        }
        shown_ = index;
        if (QWidget* after = widget(shown_)) {
            after->setEnabled(true);
            after->show();
        }
    }
    if (QWidget* held = currentWidget(); shown_ < 0 && held != nullptr) {
        held->hide();  // the stack of a tab widget has a current page even when no tab is selected
    }
    bar_->SetNoneSelected(shown_ < 0);
    RefreshImages();
}

void CTabCtrlEx::RefreshImages() {
    const auto image = [this](int index) {
        return index >= 0 && index < static_cast<int>(images_->size())
                   ? (*images_)[static_cast<std::size_t>(index)]
                   : QIcon();
    };
    for (int i = 0; i < count(); ++i) {
        setTabIcon(i, image(i == shown_ ? tabs_[static_cast<std::size_t>(i)].image : kImageInactiveTab));
    }
}

std::vector<AddFilesPage*> CTabCtrlEx::Pages() const {
    std::vector<AddFilesPage*> pages;
    for (const Tab& tab : tabs_) {
        if (tab.page != nullptr) {
            pages.push_back(tab.page);
        }
    }
    return pages;
}

AddFilesPage* CTabCtrlEx::CurrentPage() const {
    return shown_ < 0 ? nullptr : tabs_[static_cast<std::size_t>(shown_)].page;
}

void CTabCtrlEx::AssignMnemonicsBeside(std::set<QChar> used) {
    for (int tab = 0; tab < count(); ++tab) {
        setTabText(tab, WithMnemonic(WithoutMnemonic(tabText(tab)), used));
    }
    for (AddFilesPage* page : Pages()) {
        AssignMnemonics(*page, used);
    }
}

std::wstring CTabCtrlEx::CaptionOf(const AddFilesPage* page) const {
    return ToWide(WithoutMnemonic(tabText(TabOfPage(page))));
}

int CTabCtrlEx::TabOfPage(const AddFilesPage* page) const {
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
        if (page != nullptr && tabs_[i].page == page) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace orvex
