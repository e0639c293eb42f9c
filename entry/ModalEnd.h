#pragma once
#include <QObject>
#include <QTimer>

namespace orvex {

/// Ends the modal windows of a call as their Cancel does, the topmost first, and those that may still come:
/// the host quits, or the window that the dialog belongs to is gone.
class ModalEnd : public QObject {
    Q_OBJECT

  public:
    ModalEnd();

    /// From any thread; again is without effect.
    void Begin();

  private slots:
    void EndTopmost();

  private:
    QTimer timer_;
};

}  // namespace orvex
