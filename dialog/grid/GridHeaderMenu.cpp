#include "dialog/grid/GridHeaderMenu.h"

#include <utility>

#include "dialog/grid/GridColumnLayout.h"
#include "dialog/grid/GridModel.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {

GridHeaderMenu::GridHeaderMenu(GridColumnLayout& columns, UserPrompts& prompts, QWidget* grid)
    : QMenu(grid), columns_(columns), prompts_(prompts) {}

void GridHeaderMenu::Fill(const GridModel* model) {
    clear();
    if (model == nullptr) {
        return;
    }
    for (int column = 0; column < model->columnCount(); ++column) {
        const GridColumn& description = model->Columns()[static_cast<std::size_t>(column)];
        if (!description.hidden && !description.frozen) {
            AddColumn(*model, column);
        }
    }
    addSeparator();
    AddCommand(text::kGridFitColumns, "fit", L"OnFitColumns", [this] { columns_.Refit(); });
    AddCommand(text::kGridResetColumns, "reset", L"OnResetColumns", [this] { columns_.Reset(); });
}

void GridHeaderMenu::AddColumn(const GridModel& model, int column) {
    QString caption = ToQString(model.Heading(column));
    QAction* action = addAction(caption.replace(QLatin1Char('&'), QStringLiteral("&&")));
    action->setObjectName(QString::fromLatin1(model.Columns()[static_cast<std::size_t>(column)].name));
    action->setCheckable(true);
    action->setChecked(columns_.IsShown(column));
    action->setEnabled(columns_.CanHide(column));
    connect(action, &QAction::toggled, this,
            Guarded(prompts_, L"OnShowColumn", [this, column](bool show) { columns_.Show(column, show); }));
}

void GridHeaderMenu::AddCommand(StringId text, const char* name, const wchar_t* handler,
                                std::function<void()> act) {
    QAction* action = addAction(ToQString(Text(text)));
    action->setObjectName(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this, Guarded(prompts_, handler, std::move(act)));
}

}  // namespace orvex
