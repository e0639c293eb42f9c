#include "entry/ProcessState.h"

#include <windows.h>

#include <shellscalingapi.h>

#include <cfenv>
#include <filesystem>

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

std::string QtPlatformOption() {
    PROCESS_DPI_AWARENESS awareness = PROCESS_DPI_UNAWARE;
    if (FAILED(GetProcessDpiAwareness(nullptr, &awareness))) {
        awareness = PROCESS_DPI_UNAWARE;
    }
    return "windows:dpiawareness=" + std::to_string(static_cast<int>(awareness));
}

void KeepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&KeepModuleLoaded), &module);
}

}  // namespace orvex
