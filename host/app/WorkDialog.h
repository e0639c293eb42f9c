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

/// How the work ended. Abandoned: it did not return within seconds of being asked to stop, and continues in
/// the background.
enum class WorkEnd { Finished, Abandoned };

/// Modal dialog that runs long work on a thread of its own, with a progress bar and a stop button. Escape
/// stops, too. Work that ends within a moment shows no dialog.
class WorkDialog final : public QDialog {
    Q_OBJECT

  public:
    using Work = std::function<void(Kst::ProgressIf& progress)>;

    /// Returns when the work has finished or is abandoned; rethrows its exception. Abandoned work outlives
    /// the call, so `work` must own everything it uses.
    static WorkEnd Run(QWidget* parent, const QString& title, Work work);

    ~WorkDialog() override;
    /// Asks the work to stop.
    void reject() override;

  private:
    class Progress;

    WorkDialog(QWidget* parent, const QString& title, Work work);
    void Start(Work work);
    bool EndsSoon();
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
