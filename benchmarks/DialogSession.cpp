#include "benchmarks/DialogSession.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>

#include "host/app/DialogDrop.h"
#include "orvexcommon/Exports.h"

namespace orvex::bench {

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

}  // namespace orvex::bench
