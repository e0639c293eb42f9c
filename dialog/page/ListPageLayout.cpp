#include <QResizeEvent>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>

#include "dialog/details/DetailsPanel.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/FilterLine.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListPage.h"
#include "dialog/page/ListStatus.h"
#include "dialog/page/OptionsPanel.h"
#include "dialog/page/PaneState.h"
#include "dialog/page/RowFinder.h"
#include "settings/OptionStore.h"
#include "support/HandlerGuard.h"

// The part of a list page that arranges the list and the details pane and keeps how they were left.

namespace orvex {
namespace {

// Rows that the grid shows at least: where the details pane is unfolded, and where there is least room.
constexpr int kRowsBesidePane = 5;
constexpr int kLeastRows = 3;
constexpr int kLineSpacing = 3;  // between the grid and the lines above and below it

/// Height that a layout of lines needs for everything but some widgets of it.
int HeightWithout(const QLayout& lines, std::initializer_list<const QWidget*> left) {
    const QMargins margins = lines.contentsMargins();
    int height = margins.top() + margins.bottom() + (lines.count() - 1) * lines.spacing();
    for (int i = 0; i < lines.count(); ++i) {
        const bool counts = std::ranges::find(left, lines.itemAt(i)->widget()) == left.end();
        height += counts ? lines.itemAt(i)->sizeHint().height() : 0;
    }
    return height;
}

}  // namespace

void ListPage::MakeGrid() {
    grid_->setObjectName(ControlName(description_.gridId));
    grid_->setMinimumHeight(90);
    splitter_->setObjectName(QString::fromLatin1(description_.splitterName));
    splitter_->setChildrenCollapsible(false);
    auto* list = new QWidget;
    auto* lines = new QVBoxLayout(list);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(kLineSpacing);
    lines->addWidget(finder_->Line());
    lines->addWidget(grid_, 1);
    lines->addWidget(finder_->Status());
    splitter_->addWidget(list);
    splitter_->addWidget(details_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 0);
    static_cast<QVBoxLayout*>(layout())->addWidget(splitter_, 1);
}

void ListPage::ConnectPane() {
    splitter_->installEventFilter(this);
    connect(details_, &DetailsPanel::BodyShownChanged, this,
            Guarded(services_.prompts, L"ArrangePane", [this] { ArrangePane(); }));
    connect(splitter_, &QSplitter::splitterMoved, this,
            Guarded(services_.prompts, L"OnSplitterMoved", [this] {
                if (details_->IsBodyShown()) {
                    paneHeight_ = splitter_->sizes().last();
                }
            }));
}

// The pane is as high as the user left it; where there is no room for that, it yields before the filter line
// does, and that before the grid.
void ListPage::ArrangePane() {
    const int all = splitter_->height() - splitter_->handleWidth();
    const int list = grid_->HeightOfRows(kRowsBesidePane) + finder_->Status()->height() + kLineSpacing;
    const int filter = finder_->Line()->sizeHint().height() + kLineSpacing;
    const int room = all - list - filter;
    details_->SetCrowded(room < details_->LeastHeight());
    const bool crowded = room < details_->TitleHeight();
    finder_->Line()->SetCrowded(crowded);
    finder_->Status()->SetCrowded(crowded);
    const bool shown = details_->IsBodyShown();
    const int height = shown ? std::min(paneHeight_, room) : details_->TitleHeight();
    details_->setMaximumHeight(shown ? QWIDGETSIZE_MAX : height);
    splitter_->setSizes({splitter_->height() - height, height});
}

bool ListPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == splitter_ && event->type() == QEvent::Resize) {
        RunGuarded(services_.prompts, L"ArrangePane", [this] { ArrangePane(); });
    }
    return AddFilesPage::eventFilter(watched, event);
}

void ListPage::resizeEvent(QResizeEvent* event) {
    AddFilesPage::resizeEvent(event);
    const int list = grid_->HeightOfRows(kLeastRows) + splitter_->handleWidth() + details_->TitleHeight();
    const int room = height() - HeightWithout(*layout(), {splitter_, optionsPanel_}) - list;
    optionsPanel_->SetMostHeight(std::clamp(room, 0, height() * 2 / 5));
}

void ListPage::RestorePane() {
    const PaneState state =
        ParsePaneState(services_.options.ReadPlacement(description_.paneStateName).value_or(std::string()));
    paneHeight_ = state.height;
    details_->SetFolded(state.folded);
}

void ListPage::SavePane() const {
    services_.options.WritePlacement(description_.paneStateName,
                                     PaneStateText({details_->IsFolded(), paneHeight_}));
}

void ListPage::RestoreColumns() {
    if (const auto state = services_.options.ReadPlacement(description_.columnStateName)) {
        RunGuarded(services_.prompts, L"RestoreColumns", [&] { grid_->RestoreState(*state); });
    }
}

void ListPage::SaveColumns() const {
    RunGuarded(services_.prompts, L"SaveColumns", [this] {
        services_.options.WritePlacement(description_.columnStateName, grid_->SaveState());
    });
}

}  // namespace orvex
