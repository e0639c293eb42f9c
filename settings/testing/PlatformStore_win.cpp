#include "settings/testing/PlatformStore.h"

#include "settings/testing/PrivateRegistry_win.h"

namespace orvex::testing {

struct PlatformStore::System {
    PrivateRegistry registry;
};

PlatformStore::PlatformStore() : system_(std::make_unique<System>()) {
    Reopen();
}
PlatformStore::~PlatformStore() = default;

void PlatformStore::Reopen() {
    store_ = MakeRegistryStore();
}

void PlatformStore::DenyMachineWrites() {
    system_->registry.DenyWrites(HKEY_LOCAL_MACHINE, kBaseKeyName);
}

}  // namespace orvex::testing
