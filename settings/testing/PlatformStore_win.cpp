#include "settings/testing/PlatformStore.h"

#include <windows.h>

#include <vector>

#include "settings/testing/PrivateRegistry_win.h"
#include "support/Handle_win.h"

namespace orvex::testing {
namespace {

/// One file or folder that cannot be written. An access list denies everybody; a handle that does not share
/// writing does so under Wine as well, which maps access lists to a mode that does not bind root.
class ReadOnlyPath {
  public:
    explicit ReadOnlyPath(std::filesystem::path path)
        : path_(std::move(path)),
          reader_(CreateFileW(path_.c_str(), FILE_READ_DATA, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {
        // FILE_WRITE_DATA, FILE_APPEND_DATA, FILE_DELETE_CHILD; for folders the first two make files and
        // folders.
        Set(L"D:P(D;;0x46;;;WD)(A;;FA;;;WD)");
    }
    ~ReadOnlyPath() { Set(L"D:AI(A;;FA;;;WD)"); }
    ReadOnlyPath(ReadOnlyPath&& other) = delete;

  private:
    void Set(const wchar_t* rights) const {
        if (const LocalMemory<void> descriptor = SecurityDescriptorOf(rights)) {
            SetFileSecurityW(path_.c_str(), DACL_SECURITY_INFORMATION, descriptor.get());
        }
    }

    std::filesystem::path path_;
    Handle reader_;
};

}  // namespace

struct OrdinaryUser::System {
    explicit System(const std::filesystem::path& folder) {
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            paths.push_back(std::make_unique<ReadOnlyPath>(file.path()));
        }
        paths.push_back(std::make_unique<ReadOnlyPath>(folder));
    }

    std::vector<std::unique_ptr<ReadOnlyPath>> paths;
};

OrdinaryUser::OrdinaryUser(const std::filesystem::path& folder) : system_(std::make_unique<System>(folder)) {}
OrdinaryUser::~OrdinaryUser() = default;

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
