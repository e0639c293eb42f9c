#include "dialog/grid/GridCommands.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

QString ShownText(StringId id) {
    return ToQString(Text(id));
}

}  // namespace

GridCommands::GridCommands(QWidget* grid)
    : QObject(grid),
      menu_(new QMenu(grid)),
      copy_(Add("copy", ShownText(text::kGridCopy), QKeySequence::Copy)),
      copyRows_(Add("copyRows", ShownText(text::kGridCopyWithoutHeaders), {})),
      selectAll_(Add("selectAll", ShownText(text::kGridSelectAll), QKeySequence::SelectAll)),
      fit_(Add("fitColumns", ShownText(text::kGridFitColumns), {})),
      remove_(Add("remove", ShownText(text::kRemove), QKeySequence::Delete)) {
    connect(copy_, &QAction::triggered, this, [this] { emit CopyRequested(true); });
    connect(copyRows_, &QAction::triggered, this, [this] { emit CopyRequested(false); });
    connect(selectAll_, &QAction::triggered, this, &GridCommands::SelectAllRequested);
    connect(fit_, &QAction::triggered, this, &GridCommands::FitRequested);
    connect(remove_, &QAction::triggered, this, &GridCommands::RemoveRequested);
    menu_->addAction(remove_);
    menu_->addSeparator();
    menu_->addActions({copy_, copyRows_});
    // What a page adds to the menu goes in front of this, and behind what is selected.
    menu_->addSeparator()->setObjectName(QStringLiteral("endOfCopying"));
    QMenu* select = menu_->addMenu(ShownText(text::kGridSelect));
    select->setObjectName(QStringLiteral("select"));
    select->addAction(selectAll_);
    menu_->addSeparator();
    menu_->addAction(fit_);
    Enable(false, false);
}

QAction* GridCommands::Add(const char* name, const QString& text, const QKeySequence& key) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    menu_->parentWidget()->addAction(action);
    return action;
}

void GridCommands::Enable(bool hasRows, bool hasSelection) {
    copy_->setEnabled(hasSelection);
    copyRows_->setEnabled(hasSelection);
    remove_->setEnabled(hasSelection);
    selectAll_->setEnabled(hasRows);
    fit_->setEnabled(hasRows);
}

}  // namespace orvex
