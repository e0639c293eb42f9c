#include "host/app/Application.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QPalette>
#include <QStandardPaths>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>

#include "host/app/HostArguments.h"

namespace orvex {

namespace {

constexpr const char* kPlatform = "QT_QPA_PLATFORM";
constexpr const char* kFontFolder = "QT_QPA_FONTDIR";
constexpr const char* kScreenFile = "screen.json";

void DescribeOffscreenScreen(const QString& folder) {
    QFile file(QDir(folder).filePath(kScreenFile));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 3840, "height": 2400,
                                     "logicalDpi": 96, "dpr": 1}]})");
        qputenv(kPlatform, QByteArray("offscreen:configfile=") + kScreenFile);
    }
}

/// On Windows the offscreen platform looks for fonts in a folder of Qt's own, which nobody has.
void SetOffscreenFonts() {
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

QPalette DarkPalette() {
    const QColor window(0x2b, 0x2e, 0x33);
    const QColor base(0x1f, 0x22, 0x26);
    const QColor text(0xe6, 0xe8, 0xeb);
    const QColor dim(0x80, 0x86, 0x8f);
    const QColor accent(0x3d, 0x8b, 0xd9);
    QPalette palette(QColor(0x3a, 0x3e, 0x45), window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x29, 0x2e));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, dim);
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3e, 0x45));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb2, 0xf2));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
        palette.setColor(QPalette::Disabled, role, dim);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x45, 0x4a, 0x52));
    return palette;
}

}  // namespace

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv, const HostArguments& arguments,
                                              const QString& folder) {
    ChoosePlatform(arguments);
    if (qgetenv(kPlatform) != "offscreen") {
        return std::make_unique<QApplication>(argc, argv);
    }
    DescribeOffscreenScreen(folder);
    SetOffscreenFonts();
    // The file is named relative to its folder: a colon, as behind a drive's letter, would end the name.
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder);
    auto application = std::make_unique<QApplication>(argc, argv);
    QDir::setCurrent(before);
    ChooseFont();
    return application;
}

void ApplyAppearance(bool dark) {
    QStyle* style = QStyleFactory::create("Fusion");
    const QPalette palette = dark ? DarkPalette() : style->standardPalette();
    QApplication::setStyle(style);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

}  // namespace orvex
