#include <windows.h>

#include <QGuiApplication>

#include "support/KeyState.h"

namespace orvex {

// Qt asks for the state that belongs to the last message of this thread, which is an old one when another
// program's window had the keyboard till now, or when the host has a message loop of its own.
bool IsControlKeyHeld() {
    return GetAsyncKeyState(VK_CONTROL) < 0 ||
           QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

}  // namespace orvex
