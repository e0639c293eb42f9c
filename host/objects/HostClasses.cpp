#include "host/objects/HostClasses.h"

#include "host/objects/HostRasterInformation.h"
#include "host/objects/HostSettings.h"
#include "settings/ConfigFolder.h"
#include "settings/ValueFile.h"

namespace orvex::host {
namespace {

HostObjectFactory SettingsIn(const std::filesystem::path& path) {
    // One file object for all: it remembers what it has logged and that it has waited in vain.
    const auto file = std::make_shared<ValueFile>(path, ValueFileOwner::User);
    return [file] { return std::make_unique<HostSettings>(file); };
}

}  // namespace

std::filesystem::path DefaultSettingsFile() {
    const std::filesystem::path folder = UserConfigFolder();
    return folder.empty() ? folder : folder / "host.sqlite";
}

HostClasses::HostClasses(HostState state)
    : settings_(kSystemSettingsClass, SettingsIn(state.settingsFile)),
      application_(kApplicationClass,
                   [folder = std::move(state.projectFolder), options = std::move(state.options)] {
                       return std::make_unique<HostApplication>(folder, options);
                   }),
      rasterInformation_(kRasterInformationClass, [] { return std::make_unique<HostRasterInformation>(); }) {}

}  // namespace orvex::host
