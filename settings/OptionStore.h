#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>

#include "orvexcommon/OptionItems.h"
#include "settings/RegistryKey.h"

namespace orvex {

/// Access to the numbered options. Every call opens and closes what it needs; nothing is cached. Never throws
/// or waits longer than a second: an unreadable store gives the defaults, an unwritable one writes 0 bytes.
class OptionStore {
  public:
    explicit OptionStore(RegistryStore& registry) : registry_(registry) {}

    /// Reads an item and returns the bytes read: 0 if the item is unknown, the store cannot be opened or
    /// `size` is below the item's size; else the item's size, or that of its default if nothing is stored (0
    /// and an unchanged buffer without a default). Texts are UTF-16, least significant byte first, with a
    /// terminating zero, which is added if it is not stored.
    std::size_t Read(OrvexOptionItem2 item, void* buffer, std::size_t size) const;
    /// Writes an item and returns the bytes written: the item's size (for texts `size`), or 0 (unknown item,
    /// `size` below the item's size, no access).
    std::size_t Write(OrvexOptionItem2 item, const void* data, std::size_t size) const;

    /// The item's value, or `fallback` if nothing is read. T: bool and char for 1-byte items (as bool,
    /// any byte but 0 is true), 32-bit integers for 4-byte items, double for 8-byte items.
    template <typename T>
    T Get(OrvexOptionItem2 item, T fallback) const {
        using Stored = std::conditional_t<std::is_same_v<T, bool>, unsigned char, T>;
        Stored value{};
        return Read(item, &value, sizeof(value)) == 0 ? fallback : static_cast<T>(value);
    }
    /// Stores the item's value, of a type as for Get. False if it was not written.
    template <typename T>
    bool Put(OrvexOptionItem2 item, const T& value) const {
        return Write(item, &value, sizeof(T)) != 0;
    }

    /// Opaque bytes stored beside the options under a name (window placements and the like, current user);
    /// nullopt if there are none, false if they were not written.
    std::optional<std::string> ReadPlacement(const std::wstring& name) const;
    bool WritePlacement(const std::wstring& name, const std::string& bytes) const;

  private:
    RegistryStore& registry_;
};

}  // namespace orvex
