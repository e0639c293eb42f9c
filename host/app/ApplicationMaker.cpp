#include "host/app/ApplicationMaker.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QStandardPaths>

#include "host/app/HostArguments.h"

namespace orvex {

namespace {

constexpr const char* kPlatform = "QT_QPA_PLATFORM";
constexpr const char* kFontFolder = "QT_QPA_FONTDIR";
constexpr const char* kScreenFile = "screen.json";

void GiveOffscreenPlatformAScreen(const QString& folder) {
    QFile file(QDir(folder).filePath(kScreenFile));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 3840, "height": 2400,
                                     "logicalDpi": 96, "dpr": 1}]})");
        qputenv(kPlatform, QByteArray("offscreen:configfile=") + kScreenFile);
    }
}

/// On Windows the offscreen platform looks for fonts in a folder of Qt's own, which nobody has.
void GiveOffscreenPlatformFonts() {
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::FontsLocation);
    if (qEnvironmentVariableIsEmpty(kFontFolder) && !folders.isEmpty()) {
        qputenv(kFontFolder, QFile::encodeName(folders.first()));
    }
}

/// Among the fonts of a folder none is the system's own; the first that comes may have serifs.
void ChooseFont() {
    QFont font = QApplication::font();
    if (!QFontDatabase::hasFamily(font.family())) {
        font.setFamilies({"Segoe UI", "DejaVu Sans"});
        QApplication::setFont(font);
        QFont::insertSubstitutions(QFontDatabase::systemFont(QFontDatabase::FixedFont).family(),
                                   {"Consolas", "DejaVu Sans Mono"});
    }
}

void ChoosePlatform(const HostArguments& arguments) {
    if (!arguments.platform.isEmpty()) {
        qputenv(kPlatform, arguments.platform.toUtf8());
    } else if (arguments.drive && qEnvironmentVariableIsEmpty(kPlatform)) {
        qputenv(kPlatform, "offscreen");
    }
}

}  // namespace

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv, const HostArguments& arguments,
                                              const QString& folder) {
    ChoosePlatform(arguments);
    if (qgetenv(kPlatform) != "offscreen") {
        return std::make_unique<QApplication>(argc, argv);
    }
    GiveOffscreenPlatformAScreen(folder);
    GiveOffscreenPlatformFonts();
    // The file is named relative to its folder: a colon, as behind a drive's letter, would end the name.
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder);
    auto application = std::make_unique<QApplication>(argc, argv);
    QDir::setCurrent(before);
    ChooseFont();
    return application;
}

}  // namespace orvex
