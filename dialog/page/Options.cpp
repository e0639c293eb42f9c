#include "dialog/page/Options.h"

#include <algorithm>
#include <type_traits>

#include "settings/OptionCatalogue.h"

namespace orvex {
namespace {

/// Calls `use` with the number that the option's member holds. Texts and rows without a member have none.
template <typename Values, typename Use>
void WithNumber(const OptionRow& row, Values& values, const Use& use) {
    std::visit(
        [&](auto member) {
            using Member = decltype(member);
            if constexpr (std::is_same_v<Member, bool OptionValues::*>) {
                use(values.*member);
            } else if constexpr (!std::is_same_v<Member, std::monostate> &&
                                 !std::is_same_v<Member, std::wstring AddFilesParams::*>) {
                use(values.record.*member);
            }
        },
        row.member);
}

bool IsBool(const OptionRow& row) {
    return std::holds_alternative<bool AddFilesParams::*>(row.member) ||
           std::holds_alternative<bool OptionValues::*>(row.member);
}

/// A number as the option can have it.
std::int32_t Sensible(const OptionRow& row, std::int32_t number, std::int32_t fallback) {
    if (IsBool(row)) {
        return number != 0 ? 1 : 0;
    }
    if (row.control == OptionControl::Number) {
        return std::clamp(number, row.minimum, row.maximum);
    }
    const bool isChoice = std::ranges::find(row.choices, number, &OptionChoice::value) != row.choices.end();
    return isChoice || row.choices.empty() ? number : fallback;
}

// Flags are items of one byte, of which any but 0 is true; numbers are items of four.
bool IsByte(OrvexOptionItem2 item) {
    const OptionDescription* description = FindOption(item);
    return description != nullptr && description->size == 1;
}

}  // namespace

std::int32_t NumberOf(const OptionRow& row, const OptionValues& values) {
    std::int32_t number = 0;
    WithNumber(row, values, [&](const auto& value) { number = static_cast<std::int32_t>(value); });
    return number;
}

void SetNumber(const OptionRow& row, std::int32_t number, OptionValues& values) {
    WithNumber(row, values, [&](auto& value) {
        using Value = std::remove_reference_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, bool>) {
            value = number != 0;
        } else {
            value = static_cast<Value>(number);
        }
    });
}

std::wstring TextOf(const OptionRow& row, const OptionValues& values) {
    return values.record.*std::get<std::wstring AddFilesParams::*>(row.member);
}

void SetText(const OptionRow& row, std::wstring text, OptionValues& values) {
    values.record.*std::get<std::wstring AddFilesParams::*>(row.member) = std::move(text);
}

std::span<const OptionChoice> ChoicesOf(const OptionRow& row, const AddFilesParams& chosen) {
    return row.choicesFor == nullptr ? row.choices : row.choicesFor(chosen);
}

OptionValues DefaultOptions(const OptionTable& table) {
    OptionValues values;
    for (const OptionRow& row : table.rows) {
        if (IsText(row)) {
            SetText(row, row.fallback.text, values);
        } else {
            SetNumber(row, row.fallback.number, values);
        }
    }
    return values;
}

OptionValues StoredOptions::Load(const OptionTable& table) {
    OptionValues values = DefaultOptions(table);
    for (const OptionRow& row : table.rows) {
        if (const auto* item = std::get_if<OrvexOptionItem2>(&row.storage)) {
            LoadItem(row, *item, values);
        } else if (const auto* name = std::get_if<const wchar_t*>(&row.storage)) {
            LoadSetting(row, *name, values);
        }
    }
    return values;
}

void StoredOptions::Save(const OptionRow& row, const OptionValues& values) {
    if (const auto* item = std::get_if<OrvexOptionItem2>(&row.storage)) {
        SaveItem(row, *item, values);
    } else if (const auto* name = std::get_if<const wchar_t*>(&row.storage)) {
        SaveSetting(row, *name, values);
    }
}

SystemSettings& StoredOptions::Settings() {
    return settings_.has_value() ? *settings_ : settings_.emplace(hostObjects_);
}

void StoredOptions::LoadItem(const OptionRow& row, OrvexOptionItem2 item, OptionValues& values) const {
    const std::int32_t fallback =
        row.storedFallback == nullptr ? row.fallback.number : row.storedFallback(options_);
    const std::int32_t stored = IsByte(item) ? options_.Get<char>(item, fallback != 0 ? 1 : 0)
                                             : options_.Get<std::int32_t>(item, fallback);
    SetNumber(row, Sensible(row, stored, fallback), values);
}

void StoredOptions::LoadSetting(const OptionRow& row, const wchar_t* name, OptionValues& values) {
    if (IsText(row)) {
        SetText(row, Settings().GetText(name, row.fallback.text), values);
    } else if (IsBool(row)) {
        SetNumber(row, Settings().GetBool(name, row.fallback.number != 0) ? 1 : 0, values);
    } else {
        const std::int32_t stored = Settings().GetNumber(name, std::to_wstring(row.fallback.number));
        SetNumber(row, Sensible(row, stored, row.fallback.number), values);
    }
}

void StoredOptions::SaveItem(const OptionRow& row, OrvexOptionItem2 item, const OptionValues& values) const {
    const std::int32_t number = NumberOf(row, values);
    if (IsByte(item)) {
        options_.Put<char>(item, number != 0 ? 1 : 0);
    } else {
        options_.Put<std::int32_t>(item, number);
    }
}

void StoredOptions::SaveSetting(const OptionRow& row, const wchar_t* name, const OptionValues& values) {
    if (IsText(row)) {
        Settings().SetText(name, TextOf(row, values));
    } else if (IsBool(row)) {
        Settings().SetBool(name, NumberOf(row, values) != 0);
    } else {
        Settings().SetInt16(name, static_cast<std::int16_t>(NumberOf(row, values)));
    }
}

void WriteOptions(const OptionTable& table, const OptionValues& values, AddFilesParams& record) {
    for (const OptionRow& row : table.rows) {
        std::visit(
            [&](auto member) {
                if constexpr (requires { record.*member; }) {
                    record.*member = values.record.*member;
                }
            },
            row.member);
    }
}

std::optional<std::int32_t> ParseNumber(const OptionRow& row, std::wstring_view text) {
    text = text.substr(0, row.digits);
    const std::size_t start = text.find_first_not_of(L" \t");
    text.remove_prefix(start == std::wstring_view::npos ? text.size() : start);
    if (text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;  // `digits` are few enough
    for (const wchar_t character : text) {
        if (character < L'0' || character > L'9') {
            break;
        }
        value = value * 10 + (character - L'0');
    }
    if (value < row.minimum) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(std::min<std::int64_t>(value, row.maximum));
}

}  // namespace orvex
