#pragma once
#include <QColor>
#include <QPalette>

namespace orvex {

/// Whether a palette is one with light text on a dark ground.
bool IsDark(const QPalette& palette);

/// A colour between two, `share` (0 to 1) of the way from the first to the second.
QColor Mixed(const QColor& from, const QColor& to, double share);

struct FooterColours {
    QColor text;
    QColor ground;
};

/// Blue on a very light blue; on a dark palette a light blue on the palette's ground tinted blue.
FooterColours FooterColoursFor(const QPalette& palette);

/// The palette of a grid's tables: alternate rows and grid lines only just visible on the base colour.
QPalette TablePalette(QPalette palette);

}  // namespace orvex
