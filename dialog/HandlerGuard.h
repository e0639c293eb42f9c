#pragma once
#include <string_view>
#include <utility>

namespace orvex {

class UserPrompts;

/// Shows "An exception occurred in NAME():" with the cause of the exception that is being handled, and logs
/// it. Call it inside a catch block; throws nothing.
void ShowHandlerException(UserPrompts& prompts, std::wstring_view name) noexcept;

/// Runs a handler so that no exception leaves it: the user is told, the dialog stays open. True when it ended
/// without one.
template <typename Handler>
bool RunGuarded(UserPrompts& prompts, std::wstring_view name, Handler&& handler) noexcept {
    try {
        std::forward<Handler>(handler)();
        return true;
    } catch (...) {
        ShowHandlerException(prompts, name);
        return false;
    }
}

/// A handler to connect to a signal, guarded as RunGuarded does. `name` must be a literal (it is kept by
/// view); `prompts` outlives the connection. The signal's arguments are not passed on.
template <typename Handler>
auto Guarded(UserPrompts& prompts, std::wstring_view name, Handler handler) {
    return [&prompts, name, handler = std::move(handler)]() mutable { RunGuarded(prompts, name, handler); };
}

}  // namespace orvex
