#include "support/HelpViewerQt.h"

#include <QDesktopServices>

#include "support/Files.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

HelpViewerQt::HelpViewerQt(std::filesystem::path folder, Open open)
    : folder_(std::move(folder)), open_(open ? std::move(open) : Open(&QDesktopServices::openUrl)) {}

bool HelpViewerQt::Show(HelpTopic topic) {
    const std::wstring manual = FromPath(folder_ / "help" / "index.html");
    if (!FileExists(manual)) {
        return false;
    }
    QUrl address = QUrl::fromLocalFile(ToQString(manual));
    address.setFragment(QStringLiteral("topic-%1").arg(static_cast<int>(topic)));
    return open_(address);
}

}  // namespace orvex
