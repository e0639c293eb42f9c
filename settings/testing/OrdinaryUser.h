#pragma once
#include <sys/types.h>
#include <unistd.h>

#include <filesystem>

namespace orvex::testing {

/// Takes the right to write from a folder and the files in it until destroyed. A process of root, whom rights
/// do not bind, acts as "nobody" meanwhile.
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
        const perms read = perms::owner_read | perms::group_read | perms::others_read;
        const perms enter = perms::owner_exec | perms::group_exec | perms::others_exec;
        const perms extra = write ? perms::owner_write : perms::none;
        for (const auto& file : std::filesystem::directory_iterator(folder_)) {
            std::filesystem::permissions(file, read | extra);
        }
        std::filesystem::permissions(folder_, read | enter | extra);
    }

    std::filesystem::path folder_;
    uid_t user_;
    bool isSwitched_ = false;
};

}  // namespace orvex::testing
