#include "entry/QuitWatch.h"

namespace orvex {

struct QuitWatch::Hook {};

// NOLINTNEXTLINE(performance-unnecessary-value-param): the other half keeps it
QuitWatch::QuitWatch(std::function<void()>) {}
QuitWatch::~QuitWatch() = default;

bool QuitWatch::HasQuit() const {
    return false;
}

}  // namespace orvex
