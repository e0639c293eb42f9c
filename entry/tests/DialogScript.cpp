#include "entry/tests/DialogScript.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

namespace orvex::testing {
namespace {

constexpr int kTickMs = 10;

struct State {
    std::deque<std::string> commands;
    DialogScript::MayGoOn mayGoOn;
};

State& TheState() {
    static State state;
    return state;
}

void Drop(QWidget& window, const QString& paths) {
    QList<QUrl> urls;
    for (const QString& path : paths.split('|')) {
        urls.append(QUrl::fromLocalFile(path));
    }
    QMimeData data;
    data.setUrls(urls);
    const QPoint middle = window.rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);
}

// False when it cannot be carried out yet.
bool Run(const QString& command, const QString& argument, QWidget& window) {
    if (command == QLatin1String("click")) {
        auto* button = window.findChild<QAbstractButton*>(argument);
        if (button == nullptr || !button->isEnabled()) {
            return false;
        }
        button->click();
    } else if (command == QLatin1String("drop")) {
        Drop(window, argument);
    }
    return true;
}

void Step() {
    State& state = TheState();
    QWidget* window = QApplication::activeModalWidget();
    if (state.commands.empty() || window == nullptr || !window->isVisible()) {
        return;
    }
    const QString line = QString::fromStdString(state.commands.front());
    const QString command = line.section(' ', 0, 0);
    const QString argument = line.section(' ', 1);
    if (command == QLatin1String("click") && window->findChild<QAbstractButton*>(argument) == nullptr) {
        return;
    }
    if (state.mayGoOn && !state.mayGoOn()) {
        return;
    }
    // A command may run a loop of its own, in which the next ones are due.
    state.commands.pop_front();
    if (!Run(command, argument, *window)) {
        state.commands.push_front(line.toStdString());
    }
}

void Wake() {
    auto* timer = new QTimer(QCoreApplication::instance());
    QObject::connect(
        timer, &QTimer::timeout, timer, [] { Step(); }, Qt::QueuedConnection);
    timer->start(kTickMs);
}

}  // namespace

void DialogScript::Begin(std::deque<std::string> commands, MayGoOn mayGoOn) {
    static const bool installed = (qAddPreRoutine(Wake), true);
    static_cast<void>(installed);
    TheState() = {std::move(commands), std::move(mayGoOn)};
}

std::size_t DialogScript::Left() {
    return TheState().commands.size();
}

}  // namespace orvex::testing
