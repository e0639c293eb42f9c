#pragma once
#include <QScrollArea>

namespace orvex {

/// Shows a row of options at its full height; where the window is too narrow for it, it scrolls sideways.
class LasOptionsPanel final : public QScrollArea {
    Q_OBJECT

  public:
    explicit LasOptionsPanel(QWidget* content, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    int WantedHeight() const;
    void FitHeight();
};

}  // namespace orvex
