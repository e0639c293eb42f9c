#include "entry/QuitWatch.h"

namespace orvex {

struct QuitWatch::Hook {};

QuitWatch::QuitWatch(std::function<void()>) {}
QuitWatch::~QuitWatch() = default;

bool QuitWatch::HasQuit() const {
    return false;
}

}  // namespace orvex
