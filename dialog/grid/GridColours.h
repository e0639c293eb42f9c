#pragma once
#include <QColor>
#include <QPalette>

namespace orvex {

/// True for a palette with light text on a dark background.
bool IsDark(const QPalette& palette);

/// Linear interpolation between two colours; `share` is 0 for the first, 1 for the second.
QColor Mixed(const QColor& from, const QColor& to, double share);

/// A text colour chosen for a white background, lightened for a dark palette.
QColor ReadableOn(const QPalette& palette, const QColor& colour);

struct FooterColours {
    QColor text;
    QColor ground;
};

/// Blue on a very light blue; for a dark palette, light blue on its background colour tinted blue.
FooterColours FooterColoursFor(const QPalette& palette);

/// Palette of a grid's tables, with faint alternate rows and grid lines on the base colour.
QPalette TablePalette(QPalette palette);

}  // namespace orvex
