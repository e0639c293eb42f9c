#include <utility>

#include "settings/ConfigFolder.h"
#include "settings/RegistryKey.h"
#include "settings/SqliteRegistry.h"
#include "settings/ValueFile.h"

namespace orvex {
namespace {

constexpr const wchar_t* kBaseKey = L"Software\\Tessaly Group\\Orvex";

/// Keys exist by the values in them: opening or making one touches nothing.
class SqliteKey final : public RegistryKey {
  public:
    SqliteKey(ValueFile& file, std::wstring path) : file_(file), path_(std::move(path)) {}

    RegistryStatus Query(const std::wstring& name, RegistryType type,
                         std::vector<std::byte>& data) const override {
        ValueFile::Value value;
        const RegistryStatus status = StatusOf(file_.Find(path_, name, value));
        if (status != RegistryStatus::Ok) {
            return status;
        }
        if (value.type != static_cast<std::int64_t>(type)) {
            return RegistryStatus::WrongType;
        }
        data = std::move(value.data);
        return RegistryStatus::Ok;
    }
    RegistryStatus Set(const std::wstring& name, RegistryType type,
                       std::span<const std::byte> data) override {
        if (data.size() > kLongestRegistryValue) {
            return RegistryStatus::NoAccess;
        }
        return StatusOf(file_.Store(path_, name, static_cast<std::int64_t>(type), data));
    }
    std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
        return std::make_unique<SqliteKey>(file_, path_ + L"\\" + name);
    }

  private:
    static RegistryStatus StatusOf(ValueStatus status) {
        switch (status) {
            case ValueStatus::Ok:
                return RegistryStatus::Ok;
            case ValueStatus::NotFound:
                return RegistryStatus::NotFound;
            case ValueStatus::NoAccess:
                break;
        }
        return RegistryStatus::NoAccess;
    }

    ValueFile& file_;
    std::wstring path_;
};

class SqliteRegistry final : public RegistryStore {
  public:
    SqliteRegistry(const std::filesystem::path& userFile, const std::filesystem::path& machineFile)
        : user_(userFile, ValueFileOwner::User), machine_(machineFile, ValueFileOwner::Machine) {}

    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        return std::make_unique<SqliteKey>(root == RegistryRoot::CurrentUser ? user_ : machine_, kBaseKey);
    }

  private:
    ValueFile user_;
    ValueFile machine_;
};

}  // namespace

std::unique_ptr<RegistryStore> MakeSqliteRegistryStore(const std::filesystem::path& userFile,
                                                       const std::filesystem::path& machineFile) {
    return std::make_unique<SqliteRegistry>(userFile, machineFile);
}

std::unique_ptr<RegistryStore> MakeRegistryStore() {
    const std::filesystem::path user = UserConfigFolder();
    return MakeSqliteRegistryStore(user.empty() ? user : user / "user.sqlite",
                                   MachineConfigFolder() / "machine.sqlite");
}

}  // namespace orvex
