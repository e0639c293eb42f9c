#pragma once
#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <memory>
#include <thread>

#include "support/ProgressIf.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace orvex {

/// How work ended. Abandoned: it did not return some seconds after it was asked to stop; it goes on by itself
/// until it does.
enum class WorkEnd { Finished, Abandoned };

/// Long work on a thread of its own, with a bar and a button that stops it, as Escape does.
class WorkDialog final : public QDialog {
    Q_OBJECT

  public:
    using Work = std::function<void(Kst::ProgressIf& progress)>;

    /// Returns when the work is over. The work may outlive the call when it is abandoned: it must own
    /// whatever it touches. What it throws is thrown here.
    static WorkEnd Run(QWidget* parent, const QString& title, Work work);

    ~WorkDialog() override;
    /// Asks the work to stop.
    void reject() override;

  private:
    class Progress;

    WorkDialog(QWidget* parent, const QString& title, Work work);
    void Poll();

    std::shared_ptr<Progress> progress_;
    std::thread thread_;
    QLabel* text_;
    QProgressBar* bar_;
    QPushButton* stop_;
    QTimer timer_;
    QElapsedTimer sinceStopped_;
};

}  // namespace orvex
