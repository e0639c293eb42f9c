#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cfenv>
#include <clocale>
#include <filesystem>
#include <sstream>

#include "entry/HostProcess.h"
#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// An environment variable; empty if it is not set.
std::wstring Value(const wchar_t* name) {
    return EnvironmentVariable(name).value_or(std::wstring());
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// As Qt has it: GNOME draws no title bars for Wayland's windows.
bool PrefersWayland() {
    return Value(L"XDG_SESSION_TYPE") == L"wayland" &&
           ToUpper(Value(L"XDG_CURRENT_DESKTOP")).find(L"GNOME") == std::wstring::npos;
}

std::wstring XServerFault() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool failed = xcb_connection_has_error(connection) != 0;
    xcb_disconnect(connection);
    return failed ? L"the X server '" + Value(L"DISPLAY") + L"' cannot be reached" : std::wstring();
}

bool AcceptsConnections(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof(address.sun_path)) {
        return false;
    }
    socketPath.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool accepted = connect(client, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    close(client);
    return accepted;
}

std::wstring CompositorFault() {
    if (!Value(L"WAYLAND_SOCKET").empty()) {
        return {};  // an open connection, which asking would use up
    }
    const std::wstring named = Value(L"WAYLAND_DISPLAY");
    const std::filesystem::path path =
        ToPath(Value(L"XDG_RUNTIME_DIR")) / ToPath(named.empty() ? L"wayland-0" : named);
    return AcceptsConnections(path.native())
               ? std::wstring()
               : L"the compositor at '" + FromPath(path) + L"' cannot be reached";
}

}  // namespace

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

std::vector<std::string> QtPlatforms() {
    if (const std::wstring named = Value(L"QT_QPA_PLATFORM"); !named.empty()) {
        return Split(ToUtf8(named), ';');
    }
    std::vector<std::string> platforms;
    if (!Value(L"DISPLAY").empty()) {
        platforms.emplace_back("xcb");
    }
    if (!Value(L"WAYLAND_DISPLAY").empty()) {
        platforms.insert(PrefersWayland() ? platforms.begin() : platforms.end(), "wayland");
    }
    return platforms;
}

std::wstring DisplayFault(const std::string& platform) {
    if (platform == "xcb") {
        return XServerFault();
    }
    if (platform.starts_with("wayland")) {
        return CompositorFault();
    }
    for (const char* without : {"offscreen", "minimal", "vnc"}) {
        if (platform == without) {
            return {};
        }
    }
    return L"it has no windows beside the host's";
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
