#include "dialog/WindowPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include "settings/OptionStore.h"

namespace orvex {
namespace {

// Enough of the title bar must be seen to take hold of the window.
bool IsReachable(const QRect& window) {
    const QRect title(window.left() + 40, window.top(), qMax(window.width() - 80, 80), 30);
    const auto screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        const QRect seen = screen->availableGeometry().intersected(title);
        return seen.width() >= 80 && seen.height() >= 20;
    });
}

void MoveOntoPrimary(QWidget& window) {
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    window.resize(window.size().boundedTo(room.size()));
    QRect place(QPoint(), window.size());
    place.moveCenter(room.center());
    window.move(place.topLeft());
}

}  // namespace

void SaveWindowPlacement(const QWidget& window, const OptionStore& options, const wchar_t* name) {
    options.WritePlacement(name, window.saveGeometry().toStdString());
}

bool RestoreWindowPlacement(QWidget& window, const OptionStore& options, const wchar_t* name) {
    const auto stored = options.ReadPlacement(name);
    if (!stored || !window.restoreGeometry(QByteArray::fromStdString(*stored))) {
        return false;
    }
    if (!IsReachable(window.geometry())) {
        MoveOntoPrimary(window);
    }
    return true;
}

}  // namespace orvex
