#include "support/registration/Registrar_win.h"

#include <cstring>

namespace orvex {
namespace {

using Mode = RegistrarKey::Mode;

std::vector<BYTE> BytesOf(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const BYTE*>(data);
    return {bytes, bytes + size};
}

std::vector<BYTE> BytesOf(const std::wstring& text) {
    return BytesOf(text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

/// A value as the registry stores it.
struct Encoder {
    RegistryData operator()(const std::wstring& text) const { return {REG_SZ, BytesOf(text)}; }
    RegistryData operator()(std::uint32_t number) const {
        return {REG_DWORD, BytesOf(&number, sizeof(number))};
    }
    RegistryData operator()(const std::vector<std::byte>& bytes) const {
        return {REG_BINARY, BytesOf(bytes.data(), bytes.size())};
    }
    RegistryData operator()(const std::vector<std::wstring>& texts) const {
        std::wstring joined;
        for (const std::wstring& text : texts) {
            joined += text + L'\0';
        }
        return {REG_MULTI_SZ, BytesOf(joined)};  // with the zero that ends the list
    }
};

RegistryPlace PlaceOf(RegistrarRoot root, RegistrationScope scope) {
    switch (root) {
        case RegistrarRoot::CurrentUser:
            return {HKEY_CURRENT_USER, {}};
        case RegistrarRoot::LocalMachine:
            return {HKEY_LOCAL_MACHINE, {}};
        default:
            return ClassesOf(scope);
    }
}

void Apply(const RegistrarKey& key, const RegistryPlace& parent, RegistryJournal& journal) {
    const RegistryPlace place = parent.Below(key.name);
    if (key.mode == Mode::Deleted || key.mode == Mode::Owned) {
        journal.RemoveTree(place);
    }
    if (key.mode == Mode::Deleted) {
        return;
    }
    journal.CreateKey(place);
    for (const RegistrarValue& value : key.values) {
        journal.SetValue(place, value.name, std::visit(Encoder(), value.data));
    }
    for (const RegistrarKey& below : key.keys) {
        Apply(below, place, journal);
    }
}

void Revert(const RegistrarKey& key, const RegistryPlace& parent, RegistryJournal& journal) {
    const RegistryPlace place = parent.Below(key.name);
    if (key.mode == Mode::Deleted || !ReadRegistry(place)) {
        return;
    }
    if (key.mode == Mode::Owned) {
        journal.RemoveTree(place);
        return;
    }
    for (const RegistrarKey& below : key.keys) {
        Revert(below, place, journal);
    }
    for (const RegistrarValue& value : key.values) {
        if (key.mode == Mode::Plain ||
            !value.name.empty()) {  // the default value of a shared key is everybody's
            journal.RemoveValue(place, value.name);
        }
    }
    if (key.mode == Mode::Plain && ReadRegistry(place).value_or(RegistryImage()).IsEmpty()) {
        journal.RemoveTree(place);
    }
}

template <typename Change>
void ForEachKey(const RegistrarScript& script, RegistrationScope scope, Change change) {
    for (const auto& [root, keys] : script) {
        for (const RegistrarKey& key : keys) {
            change(key, PlaceOf(root, scope));
        }
    }
}

}  // namespace

RegistryPlace ClassesOf(RegistrationScope scope) {
    return scope == RegistrationScope::User ? RegistryPlace{HKEY_CURRENT_USER, L"Software\\Classes"}
                                            : RegistryPlace{HKEY_CLASSES_ROOT, {}};
}

void ApplyScript(const RegistrarScript& script, RegistrationScope scope, RegistryJournal& journal) {
    ForEachKey(script, scope,
               [&](const RegistrarKey& key, const RegistryPlace& parent) { Apply(key, parent, journal); });
}

void RevertScript(const RegistrarScript& script, RegistrationScope scope, RegistryJournal& journal) {
    ForEachKey(script, scope,
               [&](const RegistrarKey& key, const RegistryPlace& parent) { Revert(key, parent, journal); });
}

}  // namespace orvex
