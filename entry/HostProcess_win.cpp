#include "entry/HostProcess.h"

#include <windows.h>

#include <shellscalingapi.h>

#include <cfenv>
#include <filesystem>
#include <optional>

#include "entry/ThreadHook_win.h"

namespace orvex {
namespace {

// Whether the user works with another program now, whose window must not be pushed away.
bool IsInBackground() {
    DWORD process = GetCurrentProcessId();
    GetWindowThreadProcessId(GetForegroundWindow(), &process);
    return process != GetCurrentProcessId();
}

bool CanHaveFocus(HWND window) {
    return IsWindow(window) != FALSE && IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE;
}

}  // namespace

struct ProcessState::Kept {
    std::filesystem::path folder;
    std::fenv_t floatingPoint{};
    UINT errorMode = GetErrorMode();
    HWND activeWindow = GetActiveWindow();
    HWND focus = GetFocus();

    void RestoreFocus() const {
        if (IsInBackground() || !CanHaveFocus(activeWindow)) {
            return;
        }
        if (GetForegroundWindow() != activeWindow) {
            SetForegroundWindow(activeWindow);
        }
        if (GetFocus() != focus && CanHaveFocus(focus)) {
            SetFocus(focus);
        }
    }
};

ProcessState::ProcessState() : kept_(std::make_unique<Kept>()) {
    std::error_code none;
    kept_->folder = std::filesystem::current_path(none);
    std::fegetenv(&kept_->floatingPoint);
}

ProcessState::~ProcessState() {
    std::error_code gone;
    std::filesystem::current_path(kept_->folder, gone);
    std::fesetenv(&kept_->floatingPoint);
    if (GetErrorMode() != kept_->errorMode) {
        SetErrorMode(kept_->errorMode);
    }
    kept_->RestoreFocus();
}

std::vector<std::string> QtPlatforms() {
    PROCESS_DPI_AWARENESS awareness = PROCESS_DPI_UNAWARE;
    if (FAILED(GetProcessDpiAwareness(nullptr, &awareness))) {
        awareness = PROCESS_DPI_UNAWARE;
    }
    return {"windows:dpiawareness=" + std::to_string(static_cast<int>(awareness))};
}

std::wstring DisplayFault(const std::string&) {
    return {};  // every process has a window station
}

void KeepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&KeepModuleLoaded), &module);
}

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
