#include <cstdlib>
#include <utility>

#include "settings/RegistryKey.h"
#include "settings/ValueFile.h"
#include "support/Environment.h"

namespace orvex {
namespace {

constexpr const wchar_t* kBaseKey = L"Software\\Tessaly Group\\Orvex";

/// Empty if the user has no home folder.
std::filesystem::path UserFile() {
    const std::filesystem::path folder = UserConfigFolder();
    return folder.empty() ? folder : folder / "user.sqlite";
}

/// Keys exist by the values in them: opening or making one touches nothing.
class SqliteKey final : public RegistryKey {
  public:
    SqliteKey(ValueFile& file, std::wstring path) : file_(file), path_(std::move(path)) {}

    RegistryStatus Query(const std::wstring& name, RegistryType type,
                         std::vector<std::byte>& data) const override {
        ValueFile::Value value;
        const RegistryStatus status = file_.Find(path_, name, value);
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
        return file_.Store(path_, name, static_cast<std::int64_t>(type), data);
    }
    std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
        return std::make_unique<SqliteKey>(file_, path_ + L"\\" + name);
    }

  private:
    ValueFile& file_;
    std::wstring path_;
};

class SqliteRegistry final : public RegistryStore {
  public:
    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        return std::make_unique<SqliteKey>(root == RegistryRoot::CurrentUser ? user_ : machine_, kBaseKey);
    }

  private:
    ValueFile user_{UserFile(), ValueFileOwner::User};
    ValueFile machine_{MachineConfigFolder() / "machine.sqlite", ValueFileOwner::Machine};
};

}  // namespace

std::unique_ptr<RegistryStore> MakeRegistryStore() {
    return std::make_unique<SqliteRegistry>();
}

PrivateSettings::PrivateSettings(const std::filesystem::path& folder) {
    setenv("ORVEX_CONFIG_DIR", (folder / "orvex").c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
}

PrivateSettings::~PrivateSettings() {
    unsetenv("ORVEX_CONFIG_DIR");
    unsetenv("XDG_CONFIG_HOME");
}

}  // namespace orvex
