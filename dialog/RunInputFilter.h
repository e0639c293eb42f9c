#pragma once
#include <QObject>

class QWidget;

namespace orvex {

/// While a run lasts its loop handles events, so that the window lives; this filter keeps everything from a
/// window's pages that could start something else in the middle of it. Looking (scrolling, moving in a grid,
/// copying) stays possible.
class RunInputFilter final : public QObject {
  public:
    /// `area` holds the pages.
    explicit RunInputFilter(QWidget* area, QObject* parent = nullptr);

    void SetActive(bool active);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* area_;
    bool active_ = false;
};

}  // namespace orvex
