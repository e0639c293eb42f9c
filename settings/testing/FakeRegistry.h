#pragma once
// A registry in memory, for tests.
#include <map>
#include <set>
#include <utility>

#include "settings/RegistryKey.h"
#include "support/Text.h"

namespace orvex::testing {

/// Keeps what is written until it is destroyed. The switches can be thrown at any time.
class FakeRegistry final : public RegistryStore {
  public:
    struct Value {
        RegistryType type = RegistryType::Binary;
        std::vector<std::byte> data;
    };

    std::set<RegistryRoot> denyOpen;   ///< roots whose base key cannot be opened at all
    std::set<RegistryRoot> denyWrite;  ///< roots that can only be read
    int openKeys = 0;                  ///< keys that are open now

    /// Puts a value into the store whatever the switches say; `subkey` empty: into the base key.
    void Put(RegistryRoot root, const std::wstring& subkey, const std::wstring& name, Value value) {
        keys_[{root, ToUpper(subkey)}][ToUpper(name)] = std::move(value);
    }
    /// A stored value; null when there is none.
    const Value* Find(RegistryRoot root, const std::wstring& subkey, const std::wstring& name) const {
        const auto key = keys_.find({root, ToUpper(subkey)});
        if (key == keys_.end()) {
            return nullptr;
        }
        const auto value = key->second.find(ToUpper(name));
        return value == key->second.end() ? nullptr : &value->second;
    }

    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        return denyOpen.contains(root) ? nullptr : std::make_unique<Key>(*this, root, std::wstring());
    }

  private:
    class Key final : public RegistryKey {
      public:
        Key(FakeRegistry& registry, RegistryRoot root, std::wstring path)
            : registry_(registry), root_(root), path_(std::move(path)) {
            ++registry_.openKeys;
        }
        ~Key() override { --registry_.openKeys; }
        Key(const Key&) = delete;
        Key& operator=(const Key&) = delete;

        RegistryStatus Query(const std::wstring& name, RegistryType type,
                             std::vector<std::byte>& data) const override {
            const Value* value = registry_.Find(root_, path_, name);
            if (value == nullptr) {
                return RegistryStatus::NotFound;
            }
            if (value->type != type) {
                return RegistryStatus::WrongType;
            }
            data = value->data;
            return RegistryStatus::Ok;
        }
        RegistryStatus Set(const std::wstring& name, RegistryType type,
                           std::span<const std::byte> data) override {
            if (registry_.denyWrite.contains(root_) || data.size() > kLongestRegistryValue) {
                return RegistryStatus::NoAccess;
            }
            registry_.Put(root_, path_, name, {type, {data.begin(), data.end()}});
            return RegistryStatus::Ok;
        }
        std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
            const std::wstring path = path_.empty() ? name : path_ + L"\\" + name;
            const bool exists = registry_.keys_.contains({root_, ToUpper(path)});
            if (!exists && registry_.denyWrite.contains(root_)) {
                return nullptr;
            }
            registry_.keys_[{root_, ToUpper(path)}];
            return std::make_unique<Key>(registry_, root_, path);
        }

      private:
        FakeRegistry& registry_;
        RegistryRoot root_;
        std::wstring path_;
    };

    std::map<std::pair<RegistryRoot, std::wstring>, std::map<std::wstring, Value>> keys_;
};

}  // namespace orvex::testing
