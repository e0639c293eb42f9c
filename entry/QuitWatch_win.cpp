#include "entry/QuitWatch.h"

#include <optional>

#include "entry/ThreadHook_win.h"

namespace orvex {

struct QuitWatch::Hook {
    explicit Hook(std::function<void()> quit)
        : onQuit(std::move(quit)), before(current), messages(WH_GETMESSAGE, OnMessage, GetCurrentThreadId()) {
        current = this;
    }
    ~Hook() { current = before; }
    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;

    // The message is taken out of the queue by whichever loop runs: Qt's, or that of a dialog of Windows'
    // own, which ends and posts it anew.
    static LRESULT CALLBACK OnMessage(int code, WPARAM removal, LPARAM parameter) {
        const auto& message = *reinterpret_cast<const MSG*>(parameter);
        if (code == HC_ACTION && (removal & PM_REMOVE) != 0 && message.message == WM_QUIT &&
            current != nullptr) {
            current->exitCode = static_cast<int>(message.wParam);
            current->onQuit();
        }
        return CallNextHookEx(nullptr, code, removal, parameter);
    }

    std::function<void()> onQuit;
    std::optional<int> exitCode;
    Hook* before;
    ThreadHook messages;
    static thread_local Hook* current;
};

thread_local QuitWatch::Hook* QuitWatch::Hook::current = nullptr;

QuitWatch::QuitWatch(std::function<void()> onQuit) : hook_(std::make_unique<Hook>(std::move(onQuit))) {}

QuitWatch::~QuitWatch() {
    const std::optional<int> exitCode = hook_->exitCode;
    hook_.reset();
    if (exitCode) {
        PostQuitMessage(*exitCode);
    }
}

bool QuitWatch::HasQuit() const {
    return hook_->exitCode.has_value();
}

}  // namespace orvex
