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

    std::set<RegistryRoot> denyOpen;  ///< roots whose base key cannot be opened
    bool denySubkeys = false;         ///< no other key can be opened
    bool throws = false;              ///< there is no memory for anything
    std::set<std::wstring> asked;     ///< names of the values that were queried

    /// Puts a value into the store whatever the switches say; `subkey` empty: into the base key.
    void Put(RegistryRoot root, const std::wstring& subkey, const std::wstring& name, Value value) {
        values_[{root, ToUpper(subkey + L"\\" + name)}] = std::move(value);
    }
    /// A stored value; null when there is none.
    const Value* Find(RegistryRoot root, const std::wstring& subkey, const std::wstring& name) const {
        const auto value = values_.find({root, ToUpper(subkey + L"\\" + name)});
        return value == values_.end() ? nullptr : &value->second;
    }

    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        if (throws) {
            throw std::bad_alloc();
        }
        return denyOpen.contains(root) ? nullptr : std::make_unique<Key>(*this, root, L"");
    }

  private:
    class Key final : public RegistryKey {
      public:
        Key(FakeRegistry& registry, RegistryRoot root, std::wstring subkey)
            : registry_(registry), root_(root), subkey_(std::move(subkey)) {}

        RegistryStatus Query(const std::wstring& name, RegistryType type,
                             std::vector<std::byte>& data) const override {
            registry_.asked.insert(name);
            const Value* value = registry_.Find(root_, subkey_, name);
            if (value == nullptr || value->type != type) {
                return value == nullptr ? RegistryStatus::NotFound : RegistryStatus::WrongType;
            }
            data = value->data;
            return RegistryStatus::Ok;
        }
        RegistryStatus Set(const std::wstring& name, RegistryType type,
                           std::span<const std::byte> data) override {
            registry_.Put(root_, subkey_, name, {type, {data.begin(), data.end()}});
            return RegistryStatus::Ok;
        }
        std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
            return registry_.denySubkeys ? nullptr : std::make_unique<Key>(registry_, root_, name);
        }

      private:
        FakeRegistry& registry_;
        RegistryRoot root_;
        std::wstring subkey_;
    };

    std::map<std::pair<RegistryRoot, std::wstring>, Value> values_;
};

}  // namespace orvex::testing
