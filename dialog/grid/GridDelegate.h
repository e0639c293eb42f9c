#pragma once
#include <QIcon>
#include <QStyledItemDelegate>
#include <vector>

namespace orvex {

/// Draws the cells of a grid: icons by image index, texts on one line, no focus frame around single cells
/// (rows have the focus). Elided texts show in full as a tooltip where the model has none.
class GridDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Horizontal padding of a cell's text, in pixels.
    static int TextMargin(const QStyle* style);

    void SetIcons(std::vector<QIcon> icons);
    /// Null if the index has no image.
    QIcon IconAt(int image) const;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    /// Number of cells drawn so far, to measure repaints.
    std::size_t CellsPainted() const { return painted_; }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

  private:
    std::vector<QIcon> icons_;
    mutable std::size_t painted_ = 0;
};

}  // namespace orvex
