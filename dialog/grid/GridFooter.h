#pragma once
#include <QWidget>

namespace orvex {

class GridModel;
class GridTable;

/// The row below a grid with its counts and sums. It only shows: no focus, no selection, no mouse.
class GridFooter : public QWidget {
    Q_OBJECT

  public:
    GridFooter(GridTable* frozen, GridTable* scrolling, QWidget* parent);

    void SetModel(const GridModel* model);
    /// Where a column's cell is, in this widget's coordinates; the part outside the pane is cut off.
    QRect CellRect(int column) const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void PaintPane(QPainter& painter, const GridTable& table) const;
    QRect PaneRect(const GridTable& table) const;
    QRect WholeCell(const GridTable& table, int column) const;

    GridTable* frozen_;
    GridTable* scrolling_;
    const GridModel* model_ = nullptr;
};

}  // namespace orvex
