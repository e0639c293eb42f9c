#pragma once
#include <QObject>

class QAbstractButton;
class QWidget;

namespace orvex {

/// Event filter for a window's pages during a run, which pumps events to keep the window alive: blocks all
/// input that could start another operation. Scrolling, moving in a grid, copying, and buttons that are meant
/// for a run remain possible.
class RunInputFilter final : public QObject {
  public:
    /// `area` holds the pages.
    explicit RunInputFilter(QWidget* area, QObject* parent = nullptr);

    void SetActive(bool active);
    /// Lets a button be pressed during a run.
    static void AllowDuringRun(QAbstractButton& button);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* area_;
    bool active_ = false;
};

}  // namespace orvex
