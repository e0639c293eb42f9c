#include "benchmarks/DialogBench.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMimeData>
#include <QTableView>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <vector>

#include "benchmarks/Probe.h"
#include "host/app/DialogDriver.h"
#include "orvexcommon/Exports.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex::bench {

namespace {

/// Drops files and folders on a widget, as a file manager would. Returns when the files have been added.
void DropPaths(QWidget* target, const QStringList& paths) {
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(QDir::current().absoluteFilePath(path)));
    }
    QMimeData data;
    data.setUrls(urls);
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    // The files are added by a queued call, which returns when all rows are there.
    QCoreApplication::processEvents();
}

using Clock = std::chrono::steady_clock;

constexpr int kWarmOpenings = 9;

/// One dialog from opening to Cancel, driven by a timer: takes the time of its first paint, passes it to
/// `use`, answers every question with Yes, and presses Cancel when `use` has returned.
class DialogSession final : public QObject {
  public:
    /// Runs the dialog; `use` may be empty. False when the dialog did not open.
    bool Run(const std::function<void(QWidget&)>& use);

    /// Time from the call to the first paint, milliseconds.
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

/// Longest time that the event loop kept a timer of one millisecond waiting.
class StallProbe final : public QObject {
  public:
    StallProbe();
    double LongestMs() const { return longestMs_; }

  private:
    QTimer timer_;
    QElapsedTimer since_;
    double longestMs_ = 0;
};

bool DialogSession::Run(const std::function<void(QWidget&)>& use) {
    use_ = use;
    qApp->installEventFilter(this);
    connect(&timer_, &QTimer::timeout, this, &DialogSession::Tick);
    timer_.start(1);
    AddFilesParams params;
    sinceCall_.start();
    ShowAddFilesDialog(&params);
    qApp->removeEventFilter(this);
    return used_;
}

bool DialogSession::eventFilter(QObject* watched, QEvent* event) {
    if (openingMs_ < 0 && event->type() == QEvent::UpdateRequest && watched->objectName() == "AddFilesDlg") {
        // The whole window is painted while this event is handled; the time is taken when it is done.
        qApp->removeEventFilter(this);
        QCoreApplication::sendEvent(watched, event);
        openingMs_ = static_cast<double>(sinceCall_.nsecsElapsed()) / 1e6;
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void DialogSession::Tick() {
    QWidget* modal = QApplication::activeModalWidget();
    QWidget* dialog = FindAddFilesDialog();
    if (modal != nullptr && modal != dialog) {
        if (QAbstractButton* yes = AgreeingButton(modal)) {
            yes->click();
        }
        return;
    }
    if (dialog == nullptr || openingMs_ < 0) {
        return;
    }
    if (done_) {
        // More than once: a dialog that has just stopped a run takes no Cancel for a moment.
        if (auto* cancel = dialog->findChild<QAbstractButton*>("cancel")) {
            cancel->click();
        }
        return;
    }
    if (used_) {
        return;
    }
    used_ = true;
    // Queued: what runs inside a timer's own call would keep the timer from answering questions meanwhile.
    QMetaObject::invokeMethod(
        this,
        [this, dialog] {
            if (use_) {
                use_(*dialog);
            }
            done_ = true;
        },
        Qt::QueuedConnection);
}

StallProbe::StallProbe() {
    since_.start();
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] {
        longestMs_ = std::max(longestMs_, static_cast<double>(since_.nsecsElapsed()) / 1e6);
        since_.restart();
    });
    timer_.start(1);
}

double Since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Model of the shown page's grid; null if there is none.
QAbstractItemModel* GridModelOf(QWidget& dialog) {
    for (const auto* table : dialog.findChildren<QTableView*>()) {
        if (table->isVisible() && table->model() != nullptr) {
            return table->model();
        }
    }
    return nullptr;
}

QStringList CorpusFolder(const Corpus& corpus) {
    return {ToQString(FromPath(corpus.Folder()))};
}

struct Adding {
    double firstRowsMs = -1;
    double wholeMs = 0;
    double longestStallMs = 0;
    int rows = 0;
};

void AddAll(QWidget& dialog, const Corpus& corpus, Adding& adding) {
    QAbstractItemModel* model = GridModelOf(dialog);
    if (model == nullptr) {
        return;
    }
    const auto start = Clock::now();
    const QObject context;
    QObject::connect(model, &QAbstractItemModel::rowsInserted, &context, [&] {
        if (adding.firstRowsMs < 0) {
            adding.firstRowsMs = Since(start);
        }
    });
    const StallProbe stalls;
    DropPaths(&dialog, CorpusFolder(corpus));
    adding.wholeMs = Since(start);
    adding.longestStallMs = stalls.LongestMs();
    adding.rows = model->rowCount();
}

/// Measures the rows beyond the first folder's: by then the libraries hold their own memory for the
/// coordinate systems, which does not grow with the list.
void AddInTwoSteps(QWidget& dialog, const Corpus& corpus, double& heapPerRow) {
    QAbstractItemModel* model = GridModelOf(dialog);
    QStringList folders;
    for (const auto& entry : std::filesystem::directory_iterator(corpus.Folder())) {
        folders.append(ToQString(FromPath(entry.path())));
    }
    if (model == nullptr || folders.size() < 2) {
        return;
    }
    DropPaths(&dialog, {folders.takeFirst()});
    const std::uint64_t heapBefore = HeapInUse();
    const int rowsBefore = model->rowCount();
    DropPaths(&dialog, folders);
    heapPerRow = (static_cast<double>(HeapInUse()) - static_cast<double>(heapBefore)) /
                 std::max(1, model->rowCount() - rowsBefore);
}

/// Presses Escape when the grid has some rows; `answerMs` is the time until the run ends.
void StopAdding(QWidget& dialog, const Corpus& corpus, double& answerMs) {
    QAbstractItemModel* model = GridModelOf(dialog);
    if (model == nullptr) {
        return;
    }
    Clock::time_point pressed;
    const QObject context;
    QObject::connect(model, &QAbstractItemModel::rowsInserted, &context, [&] {
        if (pressed == Clock::time_point() && model->rowCount() > 500) {
            pressed = Clock::now();
            QApplication::postEvent(&dialog, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
            QApplication::postEvent(&dialog,
                                    new QKeyEvent(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier));
        }
    });
    DropPaths(&dialog, CorpusFolder(corpus));
    if (pressed != Clock::time_point() && model->rowCount() < static_cast<int>(corpus.Paths().size())) {
        answerMs = Since(pressed);
    }
}

}  // namespace

void MeasureOpening(Figures& figures) {
    std::vector<double> warm;
    for (int i = 0; i <= kWarmOpenings; ++i) {
        DialogSession session;
        if (!session.Run({})) {
            std::cerr << "the dialog did not open\n";
            return;
        }
        if (i == 0) {
            figures.Add("las_dialog_open_cold", session.OpeningMs(), "ms");
        } else {
            warm.push_back(session.OpeningMs());
        }
    }
    std::sort(warm.begin(), warm.end());
    figures.Add("las_dialog_open_warm_median", warm[warm.size() / 2], "ms");
}

void MeasureAdding(const Corpus& corpus, Figures& figures) {
    Adding adding;
    DialogSession().Run([&](QWidget& dialog) { AddAll(dialog, corpus, adding); });
    figures.Add("las_dialog_rows", adding.rows, "rows");
    figures.Add("las_dialog_first_rows", adding.firstRowsMs, "ms");
    figures.Add("las_dialog_add_all", adding.wholeMs, "ms");
    figures.Add("las_dialog_longest_stall", adding.longestStallMs, "ms");
}

void MeasureMemory(const Corpus& corpus, Figures& figures) {
    double heapPerRow = -1;
    DialogSession().Run([&](QWidget& dialog) { AddInTwoSteps(dialog, corpus, heapPerRow); });
    if (heapPerRow < 0) {
        std::cerr << "too few files to tell what a row costs\n";
        return;
    }
    figures.Add("las_dialog_heap_per_row", heapPerRow, "bytes");
}

void MeasureEscape(const Corpus& corpus, Figures& figures) {
    double answerMs = -1;
    DialogSession().Run([&](QWidget& dialog) { StopAdding(dialog, corpus, answerMs); });
    if (answerMs < 0) {
        std::cerr << "the run was over before Escape could be pressed\n";
        return;
    }
    figures.Add("las_dialog_escape", answerMs, "ms");
}

}  // namespace orvex::bench
