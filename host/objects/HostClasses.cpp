#include "host/objects/HostClasses.h"

#include "host/objects/HostSettings.h"
#include "settings/ConfigFolder.h"
#include "settings/ValueFile.h"

namespace orvex::host {

std::filesystem::path DefaultSettingsFile() {
    const std::filesystem::path folder = UserConfigFolder();
    return folder.empty() ? folder : folder / "host.sqlite";
}

HostClasses::HostClasses(HostState state) {
    // One file object for all: it remembers what it has logged and that it has waited in vain.
    const auto file = std::make_shared<ValueFile>(std::move(state.settingsFile), ValueFileOwner::User);
    RegisterHostClass(kSystemSettingsClass, [file] { return std::make_unique<HostSettings>(file); });
    RegisterHostClass(kApplicationClass,
                      [folder = std::move(state.projectFolder), options = std::move(state.options)] {
                          return std::make_unique<HostApplication>(folder, options);
                      });
}

HostClasses::~HostClasses() {
    RegisterHostClass(kSystemSettingsClass, nullptr);
    RegisterHostClass(kApplicationClass, nullptr);
}

}  // namespace orvex::host
