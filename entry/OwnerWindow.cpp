#include "entry/OwnerWindow.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace orvex {
namespace {

// A screen keeps its place in the system's pixels, and has its size in Qt's.
QRect SystemGeometry(const QScreen& screen) {
    const QRect geometry = screen.geometry();
    return {geometry.topLeft(), geometry.size() * screen.devicePixelRatio()};
}

QWidget* ParentlessModal(QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget != nullptr && widget->isWindow() && widget->isModal() && widget->parentWidget() == nullptr
               ? widget
               : nullptr;
}

}  // namespace

QPoint FromSystemPixels(QPoint point) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (SystemGeometry(*screen).contains(point)) {
            const QPoint origin = screen->geometry().topLeft();
            return origin + ((point - origin) / screen->devicePixelRatio());
        }
    }
    return point;
}

OwnerWindow::OwnerWindow(NativeWindow owner, std::function<void()> onGone)
    : owner_(owner, std::move(onGone)) {
    qApp->installEventFilter(this);
}

OwnerWindow::~OwnerWindow() {
    qApp->removeEventFilter(this);
}

// The window has laid itself out when its own handling of the event is done; what is set after that, and
// before the system shows it, holds.
bool OwnerWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Show || event->spontaneous()) {
        return false;
    }
    QWidget* dialog = ParentlessModal(watched);
    if (dialog == nullptr) {
        return false;
    }
    const bool placed = dialog->testAttribute(Qt::WA_Moved);
    watched->event(event);
    if (!placed) {
        Centre(*dialog);
    }
    OnShow(*dialog);
    return true;
}

void OwnerWindow::OnShow(QWidget& dialog) {
    QWindow* window = dialog.windowHandle();
    const NativeWindow handle = window->winId();
    owner_.Own(handle);
    owner_.Disable();
    shown_.push_back(window);
    connect(window, &QWindow::visibleChanged, this, [this, window](bool visible) {
        if (!visible) {
            OnHidden(window);
        }
    });
    connect(window, &QObject::destroyed, this, [this, window, handle] {
        OnHidden(window);
        owner_.Disown(handle);
    });
}

// The window is hidden after this; the system then activates its owner, if that can be used.
void OwnerWindow::OnHidden(QWindow* window) {
    if (std::erase(shown_, window) == 0) {
        return;
    }
    disconnect(window, &QWindow::visibleChanged, this, nullptr);
    if (shown_.empty()) {
        owner_.Enable();
    }
}

void OwnerWindow::Centre(QWidget& dialog) const {
    const std::optional<QRect> frame = owner_.Frame();
    if (!frame) {
        return;
    }
    const QPoint centre = FromSystemPixels(frame->center());
    const QScreen* screen = QGuiApplication::screenAt(centre);
    if (screen != nullptr) {
        // It was made for the size of another screen, maybe.
        const QSize borders = dialog.frameSize() - dialog.size();
        dialog.resize(dialog.size().boundedTo(screen->availableSize() - borders));
    }
    QRect place(QPoint(), dialog.frameSize());
    place.moveCenter(centre);
    if (screen != nullptr) {
        const QRect room = screen->availableGeometry();
        const QSize spare = (room.size() - place.size()).expandedTo(QSize(0, 0));
        place.moveLeft(std::clamp(place.left(), room.left(), room.left() + spare.width()));
        place.moveTop(std::clamp(place.top(), room.top(), room.top() + spare.height()));
    }
    dialog.move(place.topLeft());
}

}  // namespace orvex
