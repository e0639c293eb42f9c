#pragma once
#include <QHeaderView>

namespace orvex {

class GridDelegate;
class GridModel;

/// Header of one pane of a grid: captions aligned with the cells, icons for columns without a caption, fixed
/// sections, minimum widths.
class GridHeaderView : public QHeaderView {
    Q_OBJECT

  public:
    /// `delegate` provides the icons and must outlive the header.
    GridHeaderView(const GridDelegate& delegate, QWidget* parent);

    /// Applies widths, limits and fixed columns of the model's columns.
    void SetUp(const GridModel& model);
    /// Shows the sort indicator on a column of this pane; -1 hides it.
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
