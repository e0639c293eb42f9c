#pragma once
#include <QObject>
#include <vector>

#include "entry/NativeOwner.h"

class QWidget;
class QWindow;

namespace orvex {

/// Makes the modal windows that are shown without a parent belong to a window of the host that is not Qt's:
/// placed over it, owned by it, and the only ones of the two that take input.
class OwnerWindow : public QObject {
    Q_OBJECT

  public:
    /// `onGone` is called, on any thread, when the host destroys its window meanwhile.
    OwnerWindow(NativeWindow owner, std::function<void()> onGone);
    ~OwnerWindow() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void OnShow(QWidget& dialog);
    void OnHidden(QWindow* dialog);
    void Centre(QWidget& dialog) const;

    NativeOwner owner_;
    std::vector<QWindow*> shown_;
};

/// A point in the system's pixels, in the coordinates that Qt's windows have.
QPoint FromSystemPixels(QPoint point);

}  // namespace orvex
