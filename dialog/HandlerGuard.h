#pragma once
#include <string_view>
#include <utility>

namespace orvex {

class UserPrompts;

/// Logs the exception being handled and shows it as "An exception occurred in NAME():" with its cause. To be
/// called in a catch block; never throws.
void ShowHandlerException(UserPrompts& prompts, std::wstring_view name) noexcept;

/// Runs a handler and catches its exceptions: they are reported to the user, the dialog stays open. True if
/// none was thrown.
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

/// Returns a slot that runs `handler` under RunGuarded. `name` must be a literal (a view of it is kept);
/// `prompts` outlives the connection. The signal's arguments are dropped.
template <typename Handler>
auto Guarded(UserPrompts& prompts, std::wstring_view name, Handler handler) {
    return [&prompts, name, handler = std::move(handler)]() mutable { RunGuarded(prompts, name, handler); };
}

}  // namespace orvex
