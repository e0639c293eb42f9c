#include "entry/c/OptionJson.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "entry/ComponentCalls.h"
#include "settings/OptionCatalogue.h"
#include "settings/OptionStore.h"
#include "support/JsonText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

const OptionDescription& OptionNamed(std::string_view name) {
    const std::wstring wide = FromUtf8(name);
    const auto found = std::ranges::find(OptionCatalogue(), wide, [](const OptionDescription& option) {
        return std::wstring_view(option.valueName);
    });
    if (found == OptionCatalogue().end()) {
        throw InvalidCall(L"there is no option \"" + wide + L"\"");
    }
    return *found;
}

/// A text as the store has it: UTF-16 with a terminating zero, in this machine's byte order, which is the
/// least significant byte first on all that the component runs on.
std::vector<char16_t> StoredText(const std::wstring& text) {
    std::vector<char16_t> units;
    for (const auto c : text) {
        auto code = static_cast<std::uint32_t>(c);
        if (code > 0xFFFF) {
            code -= 0x10000;
            units.push_back(static_cast<char16_t>(0xD800 + (code >> 10U)));
            code = 0xDC00 + (code & 0x3FFU);
        }
        units.push_back(static_cast<char16_t>(code));
    }
    units.push_back(0);
    return units;
}

std::wstring TextOf(const std::vector<char16_t>& units) {
    std::wstring text;
    for (std::size_t i = 0; i < units.size() && units[i] != 0; ++i) {
        const std::uint32_t high = units[i];
        const std::uint32_t low = i + 1 < units.size() ? units[i + 1] : 0U;
        const bool isPair = high >> 10U == 0xD800U >> 10U && low >> 10U == 0xDC00U >> 10U;
        if (sizeof(wchar_t) > sizeof(char16_t) && isPair) {
            text.push_back(static_cast<wchar_t>(0x10000 + ((high & 0x3FFU) << 10U) + (low & 0x3FFU)));
            ++i;
        } else {
            text.push_back(static_cast<wchar_t>(high));
        }
    }
    return text;
}

std::string ReadText(const OptionStore& options, OrvexOptionItem2 item) {
    std::vector<char16_t> units(kLongestRegistryValue / sizeof(char16_t) + 1);
    const std::size_t size = options.Read(item, units.data(), units.size() * sizeof(char16_t));
    return size == 0 ? "null" : JsonQuoted(TextOf(units));
}

template <typename Number>
std::string ReadNumber(const OptionStore& options, OrvexOptionItem2 item) {
    Number number{};
    return options.Read(item, &number, sizeof(number)) == 0 ? "null" : Json(number).dump();
}

/// The number of a JSON value. Throws InvalidCall if it is not one that the type can hold.
template <typename Number>
Number NumberOf(const Json& json) {
    using Limits = std::numeric_limits<Number>;
    const bool isWhole = std::is_floating_point_v<Number> || json.is_number_integer();
    const double value = json.is_number() ? json.get<double>() : 0;
    if (!json.is_number() || !isWhole || value < Limits::lowest() || value > Limits::max()) {
        throw InvalidCall(L"the value is not a number that the option can hold");
    }
    return json.get<Number>();
}

Json ValueOf(std::string_view json) {
    try {
        return ParseCallersJson(json);
    } catch (const LDataError& error) {
        throw InvalidCall(error.Text());
    }
}

bool Put(const OptionStore& options, const OptionDescription& option, const Json& value) {
    if (option.type == RegistryType::String) {
        if (!value.is_string()) {
            throw InvalidCall(L"the value is not a string, as the option is");
        }
        const std::vector<char16_t> units = StoredText(JsonWide(value.get_ref<const std::string&>()));
        return options.Write(option.item, units.data(), units.size() * sizeof(char16_t)) != 0;
    }
    switch (option.size) {
        case sizeof(double):
            return options.Put(option.item, NumberOf<double>(value));
        case sizeof(std::int32_t):
            return options.Put(option.item, NumberOf<std::int32_t>(value));
        default:
            return options.Put(option.item, NumberOf<std::uint8_t>(value));
    }
}

}  // namespace

std::string ReadOption(const OptionStore& options, std::string_view name) {
    const OptionDescription& option = OptionNamed(name);
    if (option.type == RegistryType::String) {
        return ReadText(options, option.item);
    }
    switch (option.size) {
        case sizeof(double):
            return ReadNumber<double>(options, option.item);
        case sizeof(std::int32_t):
            return ReadNumber<std::int32_t>(options, option.item);
        default:
            return ReadNumber<std::uint8_t>(options, option.item);
    }
}

void WriteOption(const OptionStore& options, std::string_view name, std::string_view json) {
    if (!Put(options, OptionNamed(name), ValueOf(json))) {
        throw LDataError(L"the option could not be written");
    }
}

}  // namespace orvex
