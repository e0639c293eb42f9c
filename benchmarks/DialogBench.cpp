#include "benchmarks/DialogBench.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QKeyEvent>
#include <QTableView>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <vector>

#include "benchmarks/Corpus.h"
#include "benchmarks/DialogSession.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Probe.h"
#include "host/app/DialogDrop.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWarmOpenings = 9;

double Since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// The grid of the page that is shown.
QAbstractItemModel* GridModelOf(QWidget& dialog) {
    for (const auto* table : dialog.findChildren<QTableView*>()) {
        if (table->isVisible() && table->model() != nullptr) {
            return table->model();
        }
    }
    return nullptr;
}

QStringList CorpusFolder(const Corpus& corpus) {
    return {ToQString(FromPath(corpus.Folder() / "files"))};
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

/// What the rows beyond the first folder's cost: the libraries' own memory for the systems that occur is
/// there by then, and does not grow with the list.
void AddInTwoSteps(QWidget& dialog, const Corpus& corpus, double& heapPerRow) {
    QAbstractItemModel* model = GridModelOf(dialog);
    QStringList folders;
    for (const auto& entry : std::filesystem::directory_iterator(corpus.Folder() / "files")) {
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

/// Presses Escape when the grid has some rows, and says how long the run went on after it.
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
