#pragma once
#include <QObject>

class QAction;
class QKeySequence;
class QMenu;
class QWidget;

namespace orvex {

/// Shortcuts and context menu of a grid. The shortcuts work while the grid or one of its children has the
/// focus.
class GridCommands : public QObject {
    Q_OBJECT

  public:
    explicit GridCommands(QWidget* grid);

    /// Enables the commands: copying and removing need a selection, selecting needs rows.
    void Enable(bool hasRows, bool hasSelection);
    QMenu* Menu() const { return menu_; }

  signals:
    void CopyRequested(bool withHeaders);
    void SelectAllRequested();
    void FitRequested();
    void RemoveRequested();

  private:
    QAction* Add(const char* name, const QString& text, const QKeySequence& key);

    QMenu* menu_;
    QAction* copy_;
    QAction* copyRows_;
    QAction* selectAll_;
    QAction* fit_;
    QAction* remove_;
};

}  // namespace orvex
