#pragma once
#include <string_view>
#include <type_traits>
#include <utility>

#include "support/Text.h"

namespace orvex {

class UserPrompts;

/// Logs the exception being handled and shows it as "An exception occurred in NAME():" with its cause.
/// `caption` of the message: 0 for the program's name. To be called in a catch block; never throws.
void ShowHandlerException(UserPrompts& prompts, std::wstring_view name, StringId caption = {}) noexcept;

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

/// Returns a slot that runs `handler` under RunGuarded; every handler of the dialog is one. It gets the
/// signal's arguments if it takes them. `name` must be a literal (a view of it is kept); `prompts` outlives
/// the connection. Not for private signals (QTimer::timeout).
template <typename Handler>
auto Guarded(UserPrompts& prompts, std::wstring_view name, Handler handler) {
    return [&prompts, name,
            handler = std::move(handler)]<typename... Arguments>(const Arguments&... arguments) mutable {
        if constexpr (std::is_invocable_v<Handler&, const Arguments&...>) {
            RunGuarded(prompts, name, [&] { handler(arguments...); });
        } else {
            RunGuarded(prompts, name, handler);
        }
    };
}

}  // namespace orvex
