#pragma once
#include <QIcon>
#include <QStyledItemDelegate>
#include <vector>

namespace orvex {

/// Draws the cells of a grid: icons by image index, texts on one line, no frame around a single cell (rows
/// have the focus, not cells). Texts that are cut off show whole as a tooltip where the model has none.
class GridDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Pixels between the edge of a cell and its text, on either side.
    static int TextMargin(const QStyle* style);

    void SetIcons(std::vector<QIcon> icons);
    /// Null for an index without an image.
    QIcon IconAt(int image) const;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    /// Cells drawn so far; tells how much a repaint costs.
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
