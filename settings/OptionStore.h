#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>

#include "orvexcommon/OptionItems.h"
#include "settings/RegistryKey.h"

namespace orvex {

/// The numbered options. Every call opens and closes what it needs; nothing is cached. Never throws and never
/// waits longer than a second: a store that cannot be read gives the defaults, one that cannot be written
/// writes 0 bytes.
class OptionStore {
  public:
    explicit OptionStore(RegistryStore& registry) : registry_(registry) {}

    /// Bytes delivered: 0 when the item is unknown, the store cannot be opened or `size` is below the item's
    /// size; else the item's size, or the size of its default when nothing is stored (0 and an untouched
    /// buffer when it has none). Texts are delivered as they are stored: UTF-16, least significant byte
    /// first, with a terminating zero, which is added to one that is stored without.
    std::size_t Read(OrvexOptionItem2 item, void* buffer, std::size_t size) const;
    /// Bytes written: the item's size (for texts all of `size`), or 0 (unknown item, `size` below the item's
    /// size, no access).
    std::size_t Write(OrvexOptionItem2 item, const void* data, std::size_t size) const;

    /// The item's value, or `fallback` when nothing is delivered. T: bool and char for 1-byte items (as bool,
    /// any byte but 0 is true), 32-bit integers for 4-byte items, double for 8-byte items.
    template <typename T>
    T Get(OrvexOptionItem2 item, T fallback) const {
        using Stored = std::conditional_t<std::is_same_v<T, bool>, unsigned char, T>;
        Stored value{};
        return Read(item, &value, sizeof(value)) == 0 ? fallback : static_cast<T>(value);
    }
    /// Stores the item's value, of a type as for Get. False when it was not written.
    template <typename T>
    bool Put(OrvexOptionItem2 item, const T& value) const {
        return Write(item, &value, sizeof(T)) != 0;
    }

    /// Opaque bytes kept beside the options under a name (window placements and the like, current user). None
    /// when there are none; false when they were not written.
    std::optional<std::string> ReadPlacement(const std::wstring& name) const;
    bool WritePlacement(const std::wstring& name, const std::string& bytes) const;

  private:
    RegistryStore& registry_;
};

}  // namespace orvex
