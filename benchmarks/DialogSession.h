#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>

class QTableView;

namespace orvex::bench {

/// One dialog from opening to Cancel, watched from a timer: says when it is painted first, hands it to `use`,
/// answers every question with Yes and presses Cancel when `use` returns.
class DialogSession final : public QObject {
    Q_OBJECT

  public:
    /// Runs the dialog; `use` may be empty. False when the dialog did not open.
    bool Run(const std::function<void(QWidget&)>& use);

    /// From the call to the first paint, milliseconds.
    double OpeningMs() const { return openingMs_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Tick();

    std::function<void(QWidget&)> use_;
    QTimer timer_;
    QElapsedTimer sinceCall_;
    double openingMs_ = -1;
    bool used_ = false;
    bool done_ = false;
};

/// The longest time that the event loop left a timer of one millisecond waiting.
class StallProbe final : public QObject {
    Q_OBJECT

  public:
    StallProbe();
    double LongestMs() const { return longestMs_; }

  private:
    QTimer timer_;
    QElapsedTimer since_;
    double longestMs_ = 0;
};

}  // namespace orvex::bench
