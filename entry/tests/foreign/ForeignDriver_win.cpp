#include "entry/tests/foreign/ForeignDriver.h"

#include <QCoreApplication>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "entry/tests/DialogScript.h"
#include "host/app/SampleLasFile.h"
#include "host/objects/HostClasses.h"
#include "settings/RegistryKey.h"

namespace {

/// A host's class objects, and settings that are not the user's.
struct Served {
    explicit Served(const std::filesystem::path& folder)
        : settings(folder), classes({.settingsFile = folder / "host.sqlite", .projectFolder = [folder] {
                                         return folder.wstring();
                                     }}) {}

    orvex::PrivateSettings settings;
    orvex::host::HostClasses classes;
};

std::unique_ptr<Served>& TheServed() {
    static std::unique_ptr<Served> served;
    return served;
}

}  // namespace

#define ORVEX_DRIVER_API extern "C" __declspec(dllexport)

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
    TheServed() = std::make_unique<Served>(folder);
    orvex::SampleTile tile;
    tile.side = 20;
    tile.crs = orvex::SampleCrs::None;
    for (const wchar_t* name : {L"a.las", L"\u00fcber b.las"}) {
        std::ofstream(std::filesystem::path(folder) / name, std::ios::binary) << orvex::MakeSampleLas(tile);
    }
}
