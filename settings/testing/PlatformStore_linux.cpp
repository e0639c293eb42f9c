#include "settings/testing/PlatformStore.h"

#include <sys/wait.h>
#include <unistd.h>

#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex::testing {
namespace {

struct EmptyStore {
    TemporaryFolder folder;
    Variable user{L"ORVEX_CONFIG_DIR", folder.Name(L"user")};
    Variable machine{L"ORVEX_MACHINE_CONFIG_DIR", folder.Name(L"machine")};
};

/// The rights are in the mode. A process of root, whom rights do not bind, acts as "nobody" meanwhile.
class OrdinaryUser {
  public:
    explicit OrdinaryUser(std::filesystem::path folder) : folder_(std::move(folder)), user_(geteuid()) {
        Permit(false);
        if (user_ == 0) {
            isSwitched_ = seteuid(kNobody) == 0;
        }
    }
    ~OrdinaryUser() {
        if (isSwitched_ && seteuid(user_) != 0) {
            _exit(1);  // the tests that follow would run as somebody else
        }
        Permit(true);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;

    void Permit(bool write) const {
        using std::filesystem::perms;
        for (const auto& file : std::filesystem::directory_iterator(folder_)) {
            std::filesystem::permissions(file, perms{write ? 0644U : 0444U});
        }
        std::filesystem::permissions(folder_, perms{write ? 0755U : 0555U});
    }

    std::filesystem::path folder_;
    uid_t user_;
    bool isSwitched_ = false;
};

}  // namespace

Guard UseEmptyStore() {
    return std::make_shared<EmptyStore>();
}

Guard DenyMachineWrites() {
    return DenyWritesIn(MachineConfigFolder());
}

Guard DenyWritesIn(const std::filesystem::path& folder) {
    return std::make_shared<OrdinaryUser>(folder);
}

std::vector<int> RunChildren(const std::vector<Words>& children) {
    std::vector<pid_t> ids;
    for (const Words& words : children) {
        ids.push_back(fork());
        if (ids.back() == 0) {
            _exit(ChildMain(words));
        }
    }
    std::vector<int> codes;
    for (const pid_t id : ids) {
        int status = 0;
        const bool hasEnded = id > 0 && waitpid(id, &status, 0) == id && WIFEXITED(status);
        codes.push_back(hasEnded ? WEXITSTATUS(status) : -1);
    }
    return codes;
}

}  // namespace orvex::testing
