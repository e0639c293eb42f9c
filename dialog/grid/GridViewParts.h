#pragma once
#include "dialog/grid/GridColumnLayout.h"
#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridPanes.h"
#include "dialog/grid/GridView.h"

class QLabel;
class QScrollBar;

namespace orvex {

class GridCommands;
class GridHeaderMenu;

/// The widgets of a grid, and what its halves share.
struct GridView::Parts {
    Parts(QWidget* grid, UserPrompts& userPrompts)
        : prompts(userPrompts), delegate(new GridDelegate(grid)), panes(*delegate, userPrompts, grid) {}

    UserPrompts& prompts;
    GridModel* model = nullptr;
    std::optional<std::size_t> currentRecord;  ///< while a filter changes
    GridDelegate* delegate;
    GridPanes panes;
    GridColumnLayout columns{panes};
    GridTable* frozen = &panes.Frozen();
    GridTable* table = &panes.Scrolling();
    QFrame* seam = nullptr;
    GridFooter* footer = nullptr;
    QScrollBar* bar = nullptr;
    QLabel* message = nullptr;
    GridCommands* commands = nullptr;
    GridHeaderMenu* headerMenu = nullptr;
};

}  // namespace orvex
