#include "host/app/PlatformChoice.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "host/app/HostArguments.h"

namespace orvex {

namespace {

constexpr const char* kPlatform = "QT_QPA_PLATFORM";
constexpr const char* kFontFolder = "QT_QPA_FONTDIR";

void GiveOffscreenPlatformAScreen(const QString& folder) {
    QFile file(QDir(folder).filePath("screen.json"));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 3840, "height": 2400,
                                     "logicalDpi": 96, "dpr": 1}]})");
        // Relative to the current folder, since a colon, as behind a drive's letter, ends the name.
        qputenv(kPlatform, "offscreen:configfile=" +
                               QFile::encodeName(QDir::current().relativeFilePath(file.fileName())));
    }
}

/// On Windows the offscreen platform looks for fonts in a folder of Qt's own, which nobody has.
void GiveOffscreenPlatformFonts() {
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::FontsLocation);
    if (qEnvironmentVariableIsEmpty(kFontFolder) && !folders.isEmpty()) {
        qputenv(kFontFolder, QFile::encodeName(folders.first()));
    }
}

}  // namespace

void ChoosePlatform(const HostArguments& arguments, const QString& folder) {
    if (!arguments.platform.isEmpty()) {
        qputenv(kPlatform, arguments.platform.toUtf8());
    } else if (arguments.drive && qEnvironmentVariableIsEmpty(kPlatform)) {
        qputenv(kPlatform, "offscreen");
    }
    if (qgetenv(kPlatform) == "offscreen") {
        GiveOffscreenPlatformAScreen(folder);
        GiveOffscreenPlatformFonts();
    }
}

}  // namespace orvex
