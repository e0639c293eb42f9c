#include "entry/tests/foreign/ForeignDriver.h"

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <utility>

#include "entry/tests/DialogScript.h"
#include "host/app/SampleLasFile.h"
#include "host/objects/HostClasses.h"
#include "settings/RegistryKey.h"
#include "support/Text.h"

namespace {

/// A host's class objects, and settings that are not the user's.
struct Served {
    explicit Served(const std::filesystem::path& folder)
        : settings(folder), classes({.settingsFile = folder / "host.sqlite", .projectFolder = [folder] {
                                         return orvex::FromPath(folder);
                                     }}) {}

    orvex::PrivateSettings settings;
    orvex::host::HostClasses classes;
};

std::unique_ptr<Served>& TheServed() {
    static std::unique_ptr<Served> served;
    return served;
}

constexpr const wchar_t* kSamples[] = {L"a.las", L"\u00fcber b.las"};

void WriteSamples(const std::filesystem::path& folder) {
    orvex::SampleTile tile;
    tile.side = 20;
    tile.crs = orvex::SampleCrs::None;
    std::filesystem::create_directories(folder);
    for (const wchar_t* name : kSamples) {
        std::ofstream(folder / orvex::ToPath(name), std::ios::binary) << orvex::MakeSampleLas(tile);
    }
}

/// Works the first dialog of a program that knows nothing of its driver: ORVEX_DRIVER is the folder of sample
/// files that are added, or "cancel".
void DriveFirstDialog() {
    static bool hasBegun = false;
    const QString order = qEnvironmentVariable("ORVEX_DRIVER");
    if (order.isEmpty() || std::exchange(hasBegun, true)) {
        return;
    }
    qAddPostRoutine([] {
        if (orvex::testing::DialogScript::Left() > 0) {
            std::_Exit(3);  // no dialog was there, or another one than expected
        }
    });
    if (order == QLatin1String("cancel")) {
        orvex::testing::DialogScript::Begin({"click cancel"});
        return;
    }
    const std::filesystem::path folder = std::filesystem::absolute(orvex::ToPath(order.toStdWString()));
    WriteSamples(folder);
    const auto path = [&](const wchar_t* name) {
        return orvex::ToUtf8(orvex::FromPath(folder / orvex::ToPath(name)));
    };
    orvex::testing::DialogScript::Begin({"drop " + path(kSamples[0]) + "|" + path(kSamples[1]), "click ok",
                                         "click yes"});  // they have no CRS
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(DriveFirstDialog)

#if defined(_WIN32)
#define ORVEX_DRIVER_API extern "C" __declspec(dllexport)
#else
#define ORVEX_DRIVER_API extern "C" __attribute__((visibility("default")))
#endif

ORVEX_DRIVER_API void DriverBegin(const char* commands, DriverMayGoOn mayGoOn) {
    std::deque<std::string> lines;
    std::istringstream text(commands);
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    orvex::testing::DialogScript::Begin(std::move(lines), mayGoOn);
}

ORVEX_DRIVER_API std::size_t DriverLeft() {
    return orvex::testing::DialogScript::Left();
}

ORVEX_DRIVER_API bool DriverHasQt() {
    return QCoreApplication::instance() != nullptr;
}

ORVEX_DRIVER_API void DriverServe(const wchar_t* folder) {
    TheServed().reset();
    if (folder == nullptr) {
        return;
    }
    const std::filesystem::path path = orvex::ToPath(folder);
    TheServed() = std::make_unique<Served>(path);
    WriteSamples(path);
}
