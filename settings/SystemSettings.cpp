#include "settings/SystemSettings.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "support/LDataError.h"
#include "support/Log.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr const wchar_t* kSection = L"AddFilesDlg";
constexpr std::int16_t kTrue = -1;
constexpr std::int16_t kFalse = 0;

SettingValue Stored(OrvexSystemSettings& object, const std::wstring& key, const SettingValue& fallback) {
    SettingValue value = fallback;
    return object.Get(kSection, key, value) >= kHostOk ? value : fallback;
}

void Store(OrvexSystemSettings& object, const std::wstring& key, const SettingValue& value) {
    if (object.Set(kSection, key, value) < kHostOk) {
        LogWarning(L"settings: the host did not store \"" + key + L"\"");
    }
}

/// The number that a setting stands for; empty for anything else and for what 32 bits cannot hold.
struct NumberOf {
    using Number = std::optional<std::int32_t>;

    Number operator()(std::monostate) const { return std::nullopt; }
    Number operator()(std::int16_t value) const { return value; }
    Number operator()(std::int32_t value) const { return value; }
    Number operator()(double value) const {
        using Limits = std::numeric_limits<std::int32_t>;
        const double whole = std::nearbyint(value);
        if (!(whole >= Limits::min() && whole <= Limits::max())) {
            return std::nullopt;
        }
        return static_cast<std::int32_t>(whole);
    }
    Number operator()(const std::wstring& text) const {
        const std::string digits = ToUtf8(text);
        std::int32_t value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return error == std::errc() && end == digits.data() + digits.size() ? Number(value) : std::nullopt;
    }
};

}  // namespace

SystemSettings::SystemSettings(HostObjects& objects) {
    std::int32_t result = kHostOk;
    object_ = objects.CreateSystemSettings(result);
    if (!object_) {
        LogWarning(MissingObjectText("OrvexSystemSettings", kSystemSettingsClass, result));
        throw LDataError(L"Failed to create OrvexSystemSettings object");
    }
}

bool SystemSettings::GetBool(const std::wstring& key, bool fallback) const {
    const SettingValue value = Stored(*object_, key, fallback ? kTrue : kFalse);
    const auto* flag = std::get_if<std::int16_t>(&value);
    return flag != nullptr && *flag == kTrue;
}

void SystemSettings::SetBool(const std::wstring& key, bool value) {
    Store(*object_, key, value ? kTrue : kFalse);
}

std::wstring SystemSettings::GetText(const std::wstring& key, const std::wstring& fallback) const {
    const SettingValue value = Stored(*object_, key, fallback);
    const auto* text = std::get_if<std::wstring>(&value);
    return text != nullptr ? *text : fallback;
}

void SystemSettings::SetText(const std::wstring& key, const std::wstring& value) {
    Store(*object_, key, value);
}

std::int32_t SystemSettings::GetNumber(const std::wstring& key, std::int32_t fallback) const {
    return std::visit(NumberOf(), Stored(*object_, key, fallback)).value_or(fallback);
}

std::int32_t SystemSettings::GetNumber(const std::wstring& key, const std::wstring& fallbackDigits) const {
    const std::int32_t fallback = NumberOf()(fallbackDigits).value_or(0);
    return std::visit(NumberOf(), Stored(*object_, key, fallbackDigits)).value_or(fallback);
}

void SystemSettings::SetInt16(const std::wstring& key, std::int16_t value) {
    Store(*object_, key, value);
}

}  // namespace orvex
