#pragma once
// The component's own artwork, compiled in (resources/).
#include <QIcon>
#include <vector>

#include "support/ImageIndex.h"

namespace orvex {

/// The thirteen images in the order of their indices, each in 16 and 32 pixels.
std::vector<QIcon> MakeImageList();

enum class ButtonImage {
    AddFiles,
    AddFolder,
    Remove,
    Clear,
    Help,
    Details,
    AllRows,
    Refresh,
    Stop,
    LookInside
};

QIcon ButtonIcon(ButtonImage image);
QIcon ApplicationIcon();

}  // namespace orvex
