#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orvex {

/// A value under a key; the empty name is the key's default value.
struct RegistrarValue {
    /// REG_SZ, REG_DWORD, REG_BINARY or REG_MULTI_SZ.
    using Data = std::variant<std::wstring, std::uint32_t, std::vector<std::byte>, std::vector<std::wstring>>;

    std::wstring name;
    Data data;
};

struct RegistrarKey {
    enum class Mode {
        Shared,  ///< "NoRemove": others use it too; unregistering takes only the named values and the keys in
                 ///< it
        Plain,   ///< unregistering takes what the script has put there, and the key when nothing else is left
                 ///< in it
        Owned,   ///< "ForceRemove": the component's alone; whatever is in it goes before it is written and at
                 ///< the end
        Deleted  ///< "Delete": removed when registering
    };

    std::wstring name;  ///< one level, never empty
    Mode mode = Mode::Plain;
    std::vector<RegistrarValue> values;
    std::vector<RegistrarKey> keys;
};

enum class RegistrarRoot { ClassesRoot, CurrentUser, LocalMachine };

/// What a script puts under each root, in the script's order.
using RegistrarScript = std::vector<std::pair<RegistrarRoot, std::vector<RegistrarKey>>>;

/// The texts that stand for %NAME% in a script; the names are case-sensitive.
using RegistrarReplacements = std::map<std::wstring, std::wstring, std::less<>>;

/// Reads a registrar script, UTF-8. Words are separated by blanks and line ends; a word in single quotes may
/// hold any character ('' is one quote) and is never a keyword. %% is a percent sign.
///
///     script = { root "{" { entry } "}" }
///     root   = HKEY_CLASSES_ROOT | HKCR | HKEY_CURRENT_USER | HKCU | HKEY_LOCAL_MACHINE | HKLM
///     entry  = [ NoRemove | ForceRemove ] name [ "=" value ] [ "{" { entry } "}" ]
///            | Delete name
///            | val name "=" value
///     value  = s text | d number (decimal, or hexadecimal behind 0x or &H) | b hexadecimal bytes
///            | m texts (separated by \0)
///
/// Throws LDataError, which names the line. Refused is also what could not be meant: a name that is empty or
/// holds a backslash, and a key that belongs to the whole system, such as CLSID or Software, without
/// NoRemove.
RegistrarScript ParseRegistrarScript(std::string_view text, const RegistrarReplacements& replacements);

}  // namespace orvex
