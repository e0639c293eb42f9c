#pragma once
#include <QHeaderView>

namespace orvex {

class GridDelegate;
class GridModel;

/// The header of one pane of a grid: captions in line with the cells, icons of captionless columns, fixed
/// sections, least widths.
class GridHeaderView : public QHeaderView {
    Q_OBJECT

  public:
    /// `delegate` has the icons and must outlive the header.
    GridHeaderView(const GridDelegate& delegate, QWidget* parent);

    /// Column widths, limits and fixed columns as the model's table of columns says.
    void SetUp(const GridModel& model);
    /// Shows the sort indicator over a column of this pane; -1 for none.
    void ShowSort(int column, Qt::SortOrder order);

    QSize sizeHint() const override;

  protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;

  private:
    class CaptionStyle;

    void KeepLeastWidth(int column, int width);

    const GridDelegate& delegate_;
    CaptionStyle* captionStyle_;  ///< a child
    const GridModel* grid_ = nullptr;
};

}  // namespace orvex
