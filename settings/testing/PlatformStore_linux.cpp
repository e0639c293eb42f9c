#include "settings/testing/PlatformStore.h"

#include <sys/types.h>
#include <unistd.h>

#include <optional>

#include "settings/RegistryKey.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex::testing {

/// The rights are in the mode. A process of root, whom rights do not bind, acts as "nobody" meanwhile.
struct OrdinaryUser::System {
    explicit System(std::filesystem::path path) : folder(std::move(path)), user(geteuid()) {
        Permit(false);
        if (user == 0) {
            isSwitched = seteuid(kNobody) == 0;
        }
    }
    ~System() {
        if (isSwitched && seteuid(user) != 0) {
            _exit(1);  // the tests that follow would run as somebody else
        }
        Permit(true);
    }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    static constexpr uid_t kNobody = 65534;

    void Permit(bool write) const {
        using std::filesystem::perms;
        const perms read = perms::owner_read | perms::group_read | perms::others_read;
        const perms enter = perms::owner_exec | perms::group_exec | perms::others_exec;
        const perms extra = write ? perms::owner_write : perms::none;
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            std::filesystem::permissions(file, read | extra);
        }
        std::filesystem::permissions(folder, read | enter | extra);
    }

    std::filesystem::path folder;
    uid_t user;
    bool isSwitched = false;
};

OrdinaryUser::OrdinaryUser(const std::filesystem::path& folder) : system_(std::make_unique<System>(folder)) {}
OrdinaryUser::~OrdinaryUser() = default;

struct PlatformStore::System {
    TemporaryFolder folder;
    Variable user{L"ORVEX_CONFIG_DIR", folder.Name(L"user")};
    Variable machine{L"ORVEX_MACHINE_CONFIG_DIR", folder.Name(L"machine")};
    std::optional<OrdinaryUser> ordinaryUser;
};

PlatformStore::PlatformStore() : system_(std::make_unique<System>()) {
    Reopen();
}
PlatformStore::~PlatformStore() = default;

void PlatformStore::Reopen() {
    store_ = MakeRegistryStore();
}

void PlatformStore::DenyMachineWrites() {
    system_->ordinaryUser.emplace(system_->folder.Path() / "machine");
}

}  // namespace orvex::testing
