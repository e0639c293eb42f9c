#include "entry/OwnerWindow.h"

namespace orvex {

// Which window stands above which is the window manager's affair, and it is told by Qt, of Qt's windows.
NativeWindow FindNativeOwner(NativeWindow) {
    return 0;
}

struct NativeOwner::Watch {};

// NOLINTNEXTLINE(performance-unnecessary-value-param): the other half keeps it
NativeOwner::NativeOwner(NativeWindow, std::function<void()>) {}
NativeOwner::~NativeOwner() = default;

std::optional<QRect> NativeOwner::Frame() const {
    return std::nullopt;
}
void NativeOwner::Disable() {}
void NativeOwner::Enable() {}
void NativeOwner::Own(NativeWindow) {}
void NativeOwner::Disown(NativeWindow) {}

}  // namespace orvex
