#include "entry/c/OptionJson.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "entry/ComponentCalls.h"
#include "settings/OptionCatalogue.h"
#include "settings/OptionStore.h"
#include "support/JsonText.h"
#include "support/QtText.h"
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

// The store has texts as UTF-16 with a terminating zero, as QString has them.
std::string ReadText(const OptionStore& options, OrvexOptionItem2 item) {
    std::vector<char16_t> units(kLongestRegistryValue / sizeof(char16_t) + 1);
    const std::size_t size = options.Read(item, units.data(), units.size() * sizeof(char16_t));
    return size == 0 ? "null" : JsonQuoted(ToWide(QString(reinterpret_cast<const QChar*>(units.data()))));
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
        const QString text = ToQString(JsonWide(value.get_ref<const std::string&>()));
        const std::size_t units = static_cast<std::size_t>(text.size()) + 1;
        return options.Write(option.item, text.utf16(), units * sizeof(char16_t)) != 0;
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
