#pragma once
#include <QColor>
#include <cstddef>

namespace orvex {

/// The colour that a layer has in the tree and in the footprint view; told apart on light and dark grounds.
inline QColor LayerColour(std::size_t layer) {
    constexpr QRgb kColours[] = {0xFF2F7ED8, 0xFFE07B24, 0xFF2E9E62, 0xFFB34FC0,
                                 0xFFD64550, 0xFF17A0A8, 0xFF9A8B1F, 0xFF7467E0};
    return QColor::fromRgba(kColours[layer % std::size(kColours)]);
}

}  // namespace orvex
