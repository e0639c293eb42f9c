#include "host/app/Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>

namespace orvex {

namespace {

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

void ApplyAppearance(bool dark) {
    QStyle* style = QStyleFactory::create("Fusion");
    const QPalette palette = dark ? DarkPalette() : style->standardPalette();
    QApplication::setStyle(style);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

}  // namespace orvex
