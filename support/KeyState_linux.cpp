#include <QGuiApplication>

#include "support/KeyState.h"

namespace orvex {

bool IsControlKeyHeld() {
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

}  // namespace orvex
