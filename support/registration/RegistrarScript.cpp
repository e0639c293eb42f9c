#include "support/registration/RegistrarScript.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "support/Text.h"
#include "support/registration/RegistrarWords.h"

namespace orvex {
namespace {

using Mode = RegistrarKey::Mode;

/// Deeper than any key of the system, and shallow enough for the stack.
constexpr int kDeepest = 64;

/// Keys in which every program of the machine has something.
constexpr std::array<std::wstring_view, 12> kSystemKeys = {
    L"AppID",     L"Classes",  L"CLSID",     L"Component Categories",
    L"FileType",  L"Hardware", L"Interface", L"Mime",
    L"Microsoft", L"Software", L"System",    L"TypeLib"};

std::optional<RegistrarRoot> RootOf(const RegistrarWord& word) {
    if (word.Is(L"HKCR") || word.Is(L"HKEY_CLASSES_ROOT")) {
        return RegistrarRoot::ClassesRoot;
    }
    if (word.Is(L"HKCU") || word.Is(L"HKEY_CURRENT_USER")) {
        return RegistrarRoot::CurrentUser;
    }
    if (word.Is(L"HKLM") || word.Is(L"HKEY_LOCAL_MACHINE")) {
        return RegistrarRoot::LocalMachine;
    }
    return std::nullopt;
}

/// A whole text as a number; nothing when it is none or does not fit.
template <typename Integer>
std::optional<Integer> NumberFrom(std::string_view digits, int base) {
    Integer number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stop == end && !digits.empty() ? std::optional(number) : std::nullopt;
}

std::uint32_t DwordFrom(const RegistrarWord& word) {
    const std::string text = ToUtf8(word.text);
    const bool isHex =
        text.starts_with("0x") || text.starts_with("0X") || text.starts_with("&H") || text.starts_with("&h");
    const auto number = isHex ? NumberFrom<std::uint32_t>(std::string_view(text).substr(2), 16)
                              : NumberFrom<std::uint32_t>(text, 10);
    if (!number) {
        RegistrarWords::Fail(word.line, L"\"" + word.text + L"\" is no number of 32 bits");
    }
    return *number;
}

std::vector<std::byte> BytesFrom(const RegistrarWord& word) {
    const std::string text = ToUtf8(word.text);
    std::vector<std::byte> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const std::string_view digits = std::string_view(text).substr(i, 2);
        const auto byte = NumberFrom<std::uint8_t>(digits, 16);
        if (!byte || digits.size() != 2) {
            RegistrarWords::Fail(word.line, L"\"" + word.text + L"\" are no hexadecimal bytes");
        }
        bytes.push_back(std::byte{*byte});
    }
    return bytes;
}

std::vector<std::wstring> TextsFrom(const std::wstring& text) {
    constexpr std::wstring_view kSeparator = L"\\0";
    std::vector<std::wstring> texts;
    std::wstring_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find(kSeparator);
        if (end != 0) {  // an empty text would end the list
            texts.emplace_back(rest.substr(0, end));
        }
        rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + kSeparator.size());
    }
    return texts;
}

class Parser {
  public:
    Parser(std::string_view text, const RegistrarReplacements& replacements) : words_(text, replacements) {}

    RegistrarScript Script() {
        RegistrarScript script;
        while (!words_.Next().IsEnd()) {
            const RegistrarWord word = words_.Take();
            const auto root = RootOf(word);
            if (!root) {
                RegistrarWords::Fail(word.line, L"\"" + word.text + L"\" is no root of the registry");
            }
            RegistrarKey under;
            Block(under, 1);
            if (!under.values.empty()) {
                RegistrarWords::Fail(word.line, L"a root has no values");
            }
            script.emplace_back(*root, std::move(under.keys));
        }
        return script;
    }

  private:
    /// "{", the entries of a key, "}".
    void Block(RegistrarKey& key, int depth) {
        const int line = words_.Next().line;
        words_.Expect(L"{");
        if (depth > kDeepest) {
            RegistrarWords::Fail(line, L"keys lie too deep in each other");
        }
        while (!words_.TakeIf(L"}")) {
            Entry(key, depth);
        }
    }

    void Entry(RegistrarKey& parent, int depth) {
        if (words_.TakeIf(L"val")) {
            std::wstring name = Name(words_.Take());
            words_.Expect(L"=");
            parent.values.push_back({std::move(name), Value()});
            return;
        }
        RegistrarKey key = KeyHead();
        if (key.mode != Mode::Deleted) {
            if (words_.TakeIf(L"=")) {
                key.values.push_back({{}, Value()});
            }
            if (words_.Next().Is(L"{")) {
                Block(key, depth + 1);
            }
        }
        parent.keys.push_back(std::move(key));
    }

    /// How a key is treated, and its name.
    RegistrarKey KeyHead() {
        RegistrarKey key;
        if (words_.TakeIf(L"NoRemove")) {
            key.mode = Mode::Shared;
        } else if (words_.TakeIf(L"ForceRemove")) {
            key.mode = Mode::Owned;
        } else if (words_.TakeIf(L"Delete")) {
            key.mode = Mode::Deleted;
        }
        const RegistrarWord word = words_.Take();
        key.name = Name(word);
        const bool isSystems =
            std::any_of(kSystemKeys.begin(), kSystemKeys.end(),
                        [&](std::wstring_view name) { return EqualNoCase(name, key.name); });
        if (isSystems && key.mode != Mode::Shared) {
            RegistrarWords::Fail(word.line,
                                 L"\"" + key.name + L"\" belongs to the system: it needs NoRemove");
        }
        if (key.name.find(L'\\') != std::wstring::npos) {
            RegistrarWords::Fail(word.line, L"the name \"" + key.name + L"\" is more than one level");
        }
        return key;
    }

    static std::wstring Name(const RegistrarWord& word) {
        const bool isSign = word.Is(L"{") || word.Is(L"}") || word.Is(L"=");
        if (isSign || word.text.empty()) {
            RegistrarWords::Fail(word.line, L"a name is missing");
        }
        return word.text;
    }

    RegistrarValue::Data Value() {
        const RegistrarWord type = words_.Take();
        const RegistrarWord word = words_.Take();
        if (word.IsEnd()) {
            RegistrarWords::Fail(word.line, L"a value is missing");
        }
        if (type.Is(L"s")) {
            return word.text;
        }
        if (type.Is(L"d")) {
            return DwordFrom(word);
        }
        if (type.Is(L"b")) {
            return BytesFrom(word);
        }
        if (type.Is(L"m")) {
            return TextsFrom(word.text);
        }
        RegistrarWords::Fail(type.line, L"\"" + type.text + L"\" is no type of value");
    }

    RegistrarWords words_;
};

}  // namespace

RegistrarScript ParseRegistrarScript(std::string_view text, const RegistrarReplacements& replacements) {
    return Parser(text, replacements).Script();
}

}  // namespace orvex
