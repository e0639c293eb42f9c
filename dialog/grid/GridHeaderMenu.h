#pragma once
#include <QMenu>
#include <functional>

#include "support/Text.h"

namespace orvex {

class GridColumnLayout;
class GridModel;
class UserPrompts;

/// Context menu of a grid's header: an entry for each column that can be shown and hidden, fit, reset.
class GridHeaderMenu : public QMenu {
    Q_OBJECT

  public:
    /// `columns` and `prompts` outlive the menu.
    GridHeaderMenu(GridColumnLayout& columns, UserPrompts& prompts, QWidget* grid);

    /// As the columns are now; empty without a model.
    void Fill(const GridModel* model);

  private:
    void AddColumn(const GridModel& model, int column);
    void AddCommand(StringId text, const char* name, const wchar_t* handler, std::function<void()> act);

    GridColumnLayout& columns_;
    UserPrompts& prompts_;
};

}  // namespace orvex
