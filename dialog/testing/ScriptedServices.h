#pragma once
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <functional>
#include <string>
#include <vector>

#include "dialog/DialogServices.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeHostObjects.h"
#include "settings/testing/FakeRegistry.h"
#include "support/QtText.h"
#include "support/testing/Scripted.h"

namespace orvex::testing {

/// Drags files over a window and drops them there. `released` is called when the program that they come from
/// need not wait any longer.
inline void DropOn(
    QWidget& window, const std::vector<std::wstring>& paths, const std::function<void()>& released = [] {}) {
    QMimeData data;
    QList<QUrl> urls;
    for (const std::wstring& path : paths) {
        urls.append(QUrl::fromLocalFile(ToQString(path)));
    }
    data.setUrls(urls);
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);
    released();
    QCoreApplication::sendPostedEvents(&window, QEvent::MetaCall);
}

/// What the dialog and its pages ask for, answered by scripts and kept in memory; a base of test fixtures.
struct ScriptedServices {
    ScriptedPrompts prompts;
    ScriptedPickers pickers;
    RecordingHelpViewer help;
    FakeRegistry registry;
    FakeHostObjects hostObjects;
    OptionStore options{registry};
    DialogServices services{prompts, pickers, help, options, hostObjects};
};

}  // namespace orvex::testing
