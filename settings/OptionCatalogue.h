#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "orvexcommon/OptionItems.h"
#include "settings/RegistryKey.h"

namespace orvex {

/// Default of an option: the `size` lowest bytes of `value`, least significant first; no default if `size` is
/// 0. Not always as long as the item.
struct OptionDefault {
    std::size_t size = 0;
    std::uint32_t value = 0;
};

/// One row of the catalogue.
struct OptionDescription {
    OrvexOptionItem2 item;
    const wchar_t* valueName;
    RegistryType type;
    std::size_t size;  ///< in bytes; 0 for texts, which have any length
    OptionDefault fallback;
};

/// Storage place of a group of options.
struct OptionPlace {
    RegistryRoot root;
    const wchar_t* subkey;  ///< under the base key; null: in the base key itself
};

/// All options, in ascending order of the item's number.
std::span<const OptionDescription> OptionCatalogue();

/// Row of an item; null if the catalogue has none.
const OptionDescription* FindOption(OrvexOptionItem2 item);

/// Place of an item's group, the top byte of its number; nullopt for a group that stores nothing.
std::optional<OptionPlace> PlaceOfOption(OrvexOptionItem2 item);

}  // namespace orvex
