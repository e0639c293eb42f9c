#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "orvexcommon/OptionItems.h"
#include "settings/RegistryKey.h"

namespace orvex {

/// What an option is when nothing is stored: the `size` lowest bytes of `value`, least significant first; no
/// default when `size` is 0. Not always as long as the item.
struct OptionDefault {
    std::size_t size = 0;
    std::uint32_t value = 0;
};

/// One row of the catalogue.
struct OptionDescription {
    OrvexOptionItem2 item;
    const wchar_t* valueName;
    RegistryType type;
    std::size_t size;  ///< in bytes; 0 for texts, which are as long as what is stored
    OptionDefault fallback;
};

/// Where the options of a group are stored.
struct OptionPlace {
    RegistryRoot root;
    const wchar_t* subkey;  ///< under the base key; null: in the base key itself
};

/// Every option there is, in ascending order of the item's number.
std::span<const OptionDescription> OptionCatalogue();

/// The row of an item; null when the catalogue has none.
const OptionDescription* FindOption(OrvexOptionItem2 item);

/// The place of an item's group, which is the top byte of its number. Empty for groups that store nothing.
std::optional<OptionPlace> PlaceOfOption(OrvexOptionItem2 item);

}  // namespace orvex
