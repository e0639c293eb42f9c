#include <cfenv>
#include <clocale>
#include <filesystem>

#include "entry/HostProcess.h"
#include "support/Environment.h"
#include "support/LDataError.h"

namespace orvex {

struct ProcessState::Kept {
    std::filesystem::path folder;
    std::fenv_t floatingPoint{};
    std::string locale;
};

ProcessState::ProcessState() : kept_(std::make_unique<Kept>()) {
    std::error_code none;
    kept_->folder = std::filesystem::current_path(none);
    std::fegetenv(&kept_->floatingPoint);
    if (const char* locale = std::setlocale(LC_ALL, nullptr)) {
        kept_->locale = locale;
    }
}

ProcessState::~ProcessState() {
    std::error_code gone;
    std::filesystem::current_path(kept_->folder, gone);
    std::fesetenv(&kept_->floatingPoint);
    std::setlocale(LC_ALL, kept_->locale.c_str());
}

std::string QtPlatformOption() {
    for (const wchar_t* name : {L"QT_QPA_PLATFORM", L"WAYLAND_DISPLAY", L"DISPLAY"}) {
        if (const auto value = EnvironmentVariable(name); value && !value->empty()) {
            return {};
        }
    }
    throw LDataError(L"there is no display");
}

// The library is linked so that it stays.
void KeepModuleLoaded() {}

struct QuitWatch::Hook {};

// NOLINTNEXTLINE(performance-unnecessary-value-param): the other half keeps it
QuitWatch::QuitWatch(std::function<void()>) {}
QuitWatch::~QuitWatch() = default;

bool QuitWatch::HasQuit() const {
    return false;
}

}  // namespace orvex
