#pragma once
#include <QElapsedTimer>
#include <QTableView>
#include <functional>

namespace orvex {

class GridDelegate;
class GridHeaderView;
class UserPrompts;

/// One pane of a grid. Whole rows are selected and focused; the left and right arrow keys scroll.
class GridTable : public QTableView {
    Q_OBJECT

  public:
    enum class Pane { Frozen, Scrolling };

    /// `prompts` tells of a handler that failed; it outlives the table.
    GridTable(Pane pane, GridDelegate& delegate, UserPrompts& prompts, QWidget* parent);

    GridHeaderView* Header() const { return header_; }
    /// The pane that has the keyboard; it also gets the mouse of the other one, so that a selection with
    /// Shift starts where the last click was, in whichever pane that was.
    void SetMain(GridTable* main) { main_ = main; }
    /// Column searched by typing; queried at each key.
    void SetSearchColumn(std::function<int()> column) { searchColumn_ = std::move(column); }
    void SetRowHeight(int height);
    /// True if there is another pane to the left.
    void SetJoinsLeft(bool joins) { joinsLeft_ = joins; }
    /// Repaints one row; -1 does nothing.
    void UpdateRow(int row);

    void keyboardSearch(const QString& typed) override;

  protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  signals:
    void FocusChanged();
    void Activated();  ///< Return or Enter
    void Resized();

  private:
    bool ForwardMouse(QEvent* event);
    void Search(const QString& typed);

    UserPrompts& prompts_;
    Pane pane_;
    bool joinsLeft_ = false;
    GridTable* main_ = this;
    GridHeaderView* header_;
    std::function<int()> searchColumn_;
    QString typed_;
    QElapsedTimer sinceTyped_;
};

}  // namespace orvex
