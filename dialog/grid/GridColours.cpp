#include "dialog/grid/GridColours.h"

namespace orvex {

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

QColor Mixed(const QColor& from, const QColor& to, double share) {
    const auto mix = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())};
}

QColor ReadableOn(const QPalette& palette, const QColor& colour) {
    const bool isDark =
        palette.color(QPalette::Base).lightness() < palette.color(QPalette::WindowText).lightness();
    return isDark ? Mixed(colour, Qt::white, 0.55) : colour;
}

FooterColours FooterColoursFor(const QPalette& palette) {
    const QColor blue(0, 0, 255);
    if (!IsDark(palette)) {
        return {blue, QColor(240, 240, 255)};
    }
    return {Mixed(blue, Qt::white, 0.68), Mixed(palette.color(QPalette::Base), blue, 0.16)};
}

QPalette TablePalette(QPalette palette) {
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor base = palette.color(group, QPalette::Base);
        const QColor text = palette.color(group, QPalette::Text);
        palette.setColor(group, QPalette::AlternateBase, Mixed(base, text, 0.035));
    }
    return palette;
}

}  // namespace orvex
