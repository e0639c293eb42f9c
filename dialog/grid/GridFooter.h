#pragma once
#include <QWidget>

namespace orvex {

class GridModel;
class GridTable;

/// Row of counts and sums below a grid. Display only: takes no focus, selection or mouse input.
class GridFooter : public QWidget {
    Q_OBJECT

  public:
    GridFooter(GridTable* frozen, GridTable* scrolling, QWidget* parent);

    void SetModel(const GridModel* model);
    /// Rectangle of a column's cell in widget coordinates, clipped to its pane.
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
