#include "dialog/RunInputFilter.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace orvex {
namespace {

constexpr const char* kAllowed = "allowedDuringRun";

bool IsAllowed(const QWidget* widget) {
    return widget->property(kAllowed).toBool();
}

bool IsPressingKey(const QKeyEvent& key) {
    return key.key() == Qt::Key_Space || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

// The view that a widget is, or is the viewport or a scroll bar of.
bool AllowsBrowsing(const QWidget* widget) {
    if (qobject_cast<const QScrollBar*>(widget) != nullptr) {
        return true;
    }
    const QObject* view = widget;
    if (qobject_cast<const QAbstractScrollArea*>(widget) == nullptr) {
        view = widget->parent();
    }
    return qobject_cast<const QAbstractItemView*>(view) != nullptr &&
           qobject_cast<const QHeaderView*>(view) == nullptr;
}

bool IsBrowsingKey(const QKeyEvent& key) {
    switch (key.key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_Home:
        case Qt::Key_End:
            return true;
        default:
            return const_cast<QKeyEvent&>(key).matches(QKeySequence::Copy);
    }
}

bool StartsByKey(const QWidget* widget, const QKeyEvent& key) {
    const bool stops = key.key() == Qt::Key_Escape;
    return !stops && !(AllowsBrowsing(widget) && IsBrowsingKey(key)) &&
           !(IsAllowed(widget) && IsPressingKey(key));
}

bool Starts(const QWidget* widget, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            return !AllowsBrowsing(widget) && !IsAllowed(widget);
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
            return StartsByKey(widget, *static_cast<QKeyEvent*>(event));
        case QEvent::MouseButtonDblClick:
        case QEvent::ContextMenu:
        case QEvent::Shortcut:
        case QEvent::Drop:
            return true;
        default:
            return false;
    }
}

}  // namespace

RunInputFilter::RunInputFilter(QWidget* area, QObject* parent) : QObject(parent), area_(area) {}

void RunInputFilter::SetActive(bool active) {
    if (active == active_) {
        return;
    }
    active_ = active;
    if (active_) {
        qApp->installEventFilter(this);
    } else {
        qApp->removeEventFilter(this);
    }
}

void RunInputFilter::AllowDuringRun(QAbstractButton& button) {
    button.setProperty(kAllowed, true);
}

bool RunInputFilter::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWidgetType()) {
        return false;
    }
    const auto* widget = static_cast<QWidget*>(watched);
    return (widget == area_ || area_->isAncestorOf(widget)) && Starts(widget, event);
}

}  // namespace orvex
