#include "dialog/WindowPlacement.h"

#include <QWidget>

#include "settings/OptionStore.h"
#include "support/DesktopQt.h"

namespace orvex {
void SaveWindowPlacement(const QWidget& window, const OptionStore& options, const wchar_t* name) {
    options.WritePlacement(name, window.saveGeometry().toStdString());
}

bool RestoreWindowPlacement(QWidget& window, const OptionStore& options, const wchar_t* name) {
    const auto stored = options.ReadPlacement(name);
    if (!stored || !window.restoreGeometry(QByteArray::fromStdString(*stored))) {
        return false;
    }
    FitOntoScreen(window);
    return true;
}

}  // namespace orvex
