#include "entry/tests/foreign/ForeignDriver.h"

#include <QCoreApplication>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "entry/tests/DialogScript.h"
#include "host/app/SampleLasFile.h"
#include "host/objects/HostClasses.h"

namespace {

std::unique_ptr<orvex::host::HostClasses>& Classes() {
    static std::unique_ptr<orvex::host::HostClasses> classes;
    return classes;
}

}  // namespace

#define ORVEX_DRIVER_API extern "C" __declspec(dllexport)

ORVEX_DRIVER_API void DriverBegin(const char* commands, DriverStep onStep) {
    std::deque<std::string> lines;
    std::istringstream text(commands);
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    if (onStep != nullptr) {
        orvex::testing::DialogScript::Begin(std::move(lines), onStep);
    } else {
        orvex::testing::DialogScript::Begin(std::move(lines));
    }
}

ORVEX_DRIVER_API std::size_t DriverLeft() {
    return orvex::testing::DialogScript::Left();
}

ORVEX_DRIVER_API bool DriverHasQt() {
    return QCoreApplication::instance() != nullptr;
}

ORVEX_DRIVER_API void DriverServe(const wchar_t* folder) {
    Classes().reset();
    if (folder == nullptr) {
        return;
    }
    const std::filesystem::path place(folder);
    Classes() = std::make_unique<orvex::host::HostClasses>(orvex::host::HostState{
        .settingsFile = place / "host.sqlite", .projectFolder = [place] { return place.wstring(); }});
}

ORVEX_DRIVER_API bool DriverWriteLas(const wchar_t* path) {
    orvex::SampleTile tile;
    tile.side = 20;
    tile.crs = orvex::SampleCrs::None;
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    file << orvex::MakeSampleLas(tile);
    return file.good();
}
