#pragma once
#include <QScrollArea>

namespace orvex {

/// Shows a row of options at its full height, or at most a given one. What the window has no room for is
/// reached by scrolling.
class OptionsPanel final : public QScrollArea {
    Q_OBJECT

  public:
    explicit OptionsPanel(QWidget* content, QWidget* parent = nullptr);

    /// Pixels that the row may take.
    void SetMostHeight(int pixels);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    int WantedHeight() const;
    void FitHeight();

    int mostHeight_ = QWIDGETSIZE_MAX;
};

}  // namespace orvex
