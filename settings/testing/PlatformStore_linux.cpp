#include "settings/testing/PlatformStore.h"

#include <optional>

#include "settings/SqliteRegistry.h"
#include "settings/testing/OrdinaryUser.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

struct PlatformStore::System {
    TemporaryFolder folder;
    std::optional<OrdinaryUser> ordinaryUser;
};

PlatformStore::PlatformStore() : system_(std::make_unique<System>()) {
    Reopen();
}
PlatformStore::~PlatformStore() = default;

void PlatformStore::Reopen() {
    const auto& folder = system_->folder.Path();
    store_ = MakeSqliteRegistryStore(folder / "user" / "user.sqlite", folder / "machine" / "machine.sqlite");
}

void PlatformStore::DenyMachineWrites() {
    system_->ordinaryUser.emplace(system_->folder.Path() / "machine");
}

}  // namespace orvex::testing
