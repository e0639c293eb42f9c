#include "settings/OptionStore.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "settings/OptionCatalogue.h"

namespace orvex {
namespace {

constexpr const wchar_t* kPlacements = L"Placements";

/// A key of the store, with the keys on the way to it.
struct OpenedKey {
    std::unique_ptr<RegistryKey> base;
    std::unique_ptr<RegistryKey> subkey;

    RegistryKey* operator->() const { return subkey ? subkey.get() : base.get(); }
};

std::optional<OpenedKey> Open(RegistryStore& registry, const OptionPlace& place) {
    OpenedKey key{registry.OpenBaseKey(place.root), nullptr};
    if (!key.base) {
        return std::nullopt;
    }
    if (place.subkey != nullptr) {
        key.subkey = key.base->OpenSubkey(place.subkey);
        if (!key.subkey) {
            return std::nullopt;
        }
    }
    return key;
}

/// The row of an item and its opened key.
struct DescribedOption {
    const OptionDescription& option;
    OpenedKey key;
};

std::optional<DescribedOption> Describe(RegistryStore& registry, OrvexOptionItem2 item) {
    const OptionDescription* option = FindOption(item);
    const std::optional<OptionPlace> place = PlaceOfOption(item);
    if (option == nullptr || !place) {
        return std::nullopt;
    }
    std::optional<OpenedKey> key = Open(registry, *place);
    if (!key) {
        return std::nullopt;
    }
    return DescribedOption{*option, std::move(*key)};
}

/// Makes a stored text what callers expect: whole UTF-16 units, the last one a zero. Other programs store
/// texts without it; one without any unit stays empty.
void Terminate(std::vector<std::byte>& text) {
    constexpr std::size_t kUnit = sizeof(char16_t);
    text.resize(text.size() / kUnit * kUnit);
    const bool isTerminated = !text.empty() && text.back() == std::byte{0} && text.end()[-2] == std::byte{0};
    if (!text.empty() && !isTerminated) {
        text.insert(text.end(), kUnit, std::byte{0});
    }
}

std::size_t DeliverDefault(const OptionDefault& fallback, void* buffer) {
    for (std::size_t i = 0; i < fallback.size; ++i) {
        static_cast<std::byte*>(buffer)[i] = static_cast<std::byte>(fallback.value >> (8 * i));
    }
    return fallback.size;
}

}  // namespace

std::size_t OptionStore::Read(OrvexOptionItem2 item, void* buffer, std::size_t size) const {
    const std::optional<DescribedOption> described = Describe(registry_, item);
    if (!described || size < described->option.size) {
        return 0;
    }
    const OptionDescription& option = described->option;
    const bool isText = option.type == RegistryType::String;
    std::vector<std::byte> data;
    const RegistryStatus status = described->key->Query(option.valueName, option.type, data);
    // A value of another length is not this option's, whoever wrote it.
    if (status != RegistryStatus::Ok || (!isText && data.size() != option.size)) {
        return DeliverDefault(option.fallback, buffer);
    }
    if (isText) {
        Terminate(data);
    }
    if (data.empty() || size < data.size()) {
        return 0;
    }
    std::memcpy(buffer, data.data(), data.size());
    return data.size();
}

std::size_t OptionStore::Write(OrvexOptionItem2 item, const void* data, std::size_t size) const {
    std::optional<DescribedOption> described = Describe(registry_, item);
    if (!described || size < described->option.size) {
        return 0;
    }
    const OptionDescription& option = described->option;
    const std::size_t written = option.type == RegistryType::String ? size : option.size;
    const std::span bytes(static_cast<const std::byte*>(data), written);
    const RegistryStatus status = described->key->Set(option.valueName, option.type, bytes);
    return status == RegistryStatus::Ok ? written : 0;
}

std::optional<std::string> OptionStore::ReadPlacement(const std::wstring& name) const {
    const auto key = Open(registry_, {RegistryRoot::CurrentUser, kPlacements});
    std::vector<std::byte> data;
    if (!key || (*key)->Query(name, RegistryType::Binary, data) != RegistryStatus::Ok) {
        return std::nullopt;
    }
    std::string bytes(data.size(), '\0');
    std::ranges::transform(data, bytes.begin(), [](std::byte b) { return static_cast<char>(b); });
    return bytes;
}

bool OptionStore::WritePlacement(const std::wstring& name, const std::string& bytes) const {
    const auto key = Open(registry_, {RegistryRoot::CurrentUser, kPlacements});
    return key &&
           (*key)->Set(name, RegistryType::Binary, std::as_bytes(std::span(bytes))) == RegistryStatus::Ok;
}

}  // namespace orvex
