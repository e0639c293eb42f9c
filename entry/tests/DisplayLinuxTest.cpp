// A host without Qt where the display is not what the environment says.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QByteArray>
#include <QString>
#include <cstring>
#include <map>

#include "entry/HostProcess.h"
#include "orvexcommon/Exports.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

/// Environment variables as given, and back again; null: not set.
class Environment {
  public:
    explicit Environment(const std::map<std::string, const char*>& values) {
        for (const char* name : {"ORVEX_QT_PLATFORM", "QT_QPA_PLATFORM", "XDG_SESSION_TYPE",
                                 "XDG_RUNTIME_DIR", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "DISPLAY"}) {
            before_[name] = qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray();
            qunsetenv(name);
        }
        for (const auto& [name, value] : values) {
            qputenv(name.c_str(), value);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : before_) {
            value.isNull() ? qunsetenv(name.c_str()) : qputenv(name.c_str(), value);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    std::map<std::string, QByteArray> before_;
};

TEST(Display, WhatCannotBeUsedCountsAsCancelledAndTheLogHasTheReason) {
    struct Case {
        std::map<std::string, const char*> environment;
        const char* reason;
    };
    const Case cases[] = {
        {{}, "there is no display"},
        {{{"DISPLAY", ":4711"}}, "X server ':4711'"},
        {{{"DISPLAY", "no such server"}}, "X server 'no such server'"},
        {{{"WAYLAND_DISPLAY", "/nowhere/wayland-9"}}, "wayland"},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"WAYLAND_DISPLAY", "stale"}, {"DISPLAY", ":4711"}}, "wayland"},
        {{{"QT_QPA_PLATFORM", "nowhere"}}, "'nowhere'"},
        {{{"QT_QPA_PLATFORM", "xcb"}}, "X server"},
        {{{"QT_QPA_PLATFORM", "nowhere;xcb:nograb"}, {"DISPLAY", ":4711"}}, "X server ':4711'"},
        // Each takes over the screen, or ends the process where it cannot.
        {{{"QT_QPA_PLATFORM", "eglfs"}}, "'eglfs'"},
        {{{"QT_QPA_PLATFORM", "linuxfb"}}, "'linuxfb'"},
    };
    for (const Case& c : cases) {
        const Environment environment(c.environment);
        const std::filesystem::path log = qEnvironmentVariable("ORVEX_LOG").toStdString();
        std::filesystem::resize_file(log, 0);
        AddFilesParams record;
        EXPECT_FALSE(ShowAddFilesDialog(&record));
        const std::string said = testing::ReadFile(log.wstring());
        EXPECT_NE(said.find("ShowAddFilesDialog"), std::string::npos) << c.reason;
        EXPECT_NE(said.find(c.reason), std::string::npos) << c.reason << " is not in " << said;
        EXPECT_EQ(GetAddingLidarChoice(true), ADD_LIDAR_READ_ONLY);
    }
}

TEST(Display, ACompositorIsAskedForWhereItsSocketIs) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.Path().string() + "/wayland-7";
    const Environment environment(
        {{"XDG_RUNTIME_DIR", folder.Path().c_str()}, {"WAYLAND_DISPLAY", "wayland-7"}});
    EXPECT_FALSE(DisplayFault("wayland").empty()) << "nothing is there";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    const int compositor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(compositor, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_FALSE(DisplayFault("wayland-egl").empty()) << "its compositor has gone";
    ASSERT_EQ(listen(compositor, 1), 0);
    EXPECT_EQ(DisplayFault("wayland"), L"");
    qputenv("WAYLAND_DISPLAY", path.c_str());
    EXPECT_EQ(DisplayFault("wayland"), L"");
    close(compositor);
}

}  // namespace
}  // namespace orvex
