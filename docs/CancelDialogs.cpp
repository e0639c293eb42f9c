// Linked into the example for its test: presses Escape in every dialog that opens, so that it ends without a
// person.
#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <cstdlib>

static bool dialogSeen = false;

// Before main, which makes the application.
static const bool offscreen =
    !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || qputenv("QT_QPA_PLATFORM", "offscreen");

static void CancelDialogs() {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            dialogSeen = true;
            QApplication::postEvent(dialog, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        }
    });
    timer->start(20);
    qAddPostRoutine([] {
        if (!dialogSeen) {
            std::_Exit(1);
        }
    });
}
Q_COREAPP_STARTUP_FUNCTION(CancelDialogs)
