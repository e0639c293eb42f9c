#include "settings/FileSettings.h"

#include <cstring>
#include <optional>
#include <vector>

#include "settings/ValueFile.h"
#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Types of the values in the file. They are part of its format.
enum Kind : std::int64_t { kEmpty = 0, kInt16 = 1, kInt32 = 2, kDouble = 3, kText = 4 };

std::vector<std::byte> BytesOf(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::byte*>(data);
    return {bytes, bytes + size};
}

/// Value as stored in the file: numbers in little-endian byte order, texts in UTF-8.
struct Encoder {
    using Value = ValueFile::Value;

    Value operator()(std::monostate) const { return {kEmpty, {}}; }
    Value operator()(std::int16_t number) const { return {kInt16, BytesOf(&number, sizeof(number))}; }
    Value operator()(std::int32_t number) const { return {kInt32, BytesOf(&number, sizeof(number))}; }
    Value operator()(double number) const { return {kDouble, BytesOf(&number, sizeof(number))}; }
    Value operator()(const std::wstring& text) const {
        const std::string utf8 = ToUtf8(text);
        return {kText, BytesOf(utf8.data(), utf8.size())};
    }
};

template <typename Number>
std::optional<SettingValue> NumberFrom(const std::vector<std::byte>& data) {
    Number number{};
    if (data.size() != sizeof(number)) {
        return std::nullopt;
    }
    std::memcpy(&number, data.data(), sizeof(number));
    return number;
}

/// nullopt for an empty value and for data that these objects never write.
std::optional<SettingValue> Decode(const ValueFile::Value& value) {
    switch (value.type) {
        case kInt16:
            return NumberFrom<std::int16_t>(value.data);
        case kInt32:
            return NumberFrom<std::int32_t>(value.data);
        case kDouble:
            return NumberFrom<double>(value.data);
        case kText:
            return FromUtf8({reinterpret_cast<const char*>(value.data.data()), value.data.size()});
        default:
            return std::nullopt;
    }
}

}  // namespace

std::filesystem::path UserSettingsFile() {
    const std::filesystem::path folder = UserConfigFolder();
    return folder.empty() ? folder : folder / "host.sqlite";
}

FileSettings::FileSettings(const std::filesystem::path& path)
    : file_(std::make_shared<ValueFile>(path, ValueFileOwner::User)) {}

std::int32_t FileSettings::Get(const std::wstring& section, const std::wstring& key, SettingValue& value) {
    ValueFile::Value stored;
    const RegistryStatus status = file_->Find(section, key, stored);
    if (status == RegistryStatus::NoAccess) {
        return kHostFail;
    }
    if (status == RegistryStatus::Ok) {
        value = Decode(stored).value_or(value);
    }
    return kHostOk;
}

std::int32_t FileSettings::Set(const std::wstring& section, const std::wstring& key,
                               const SettingValue& value) {
    const ValueFile::Value stored = std::visit(Encoder(), value);
    const RegistryStatus status = file_->Store(section, key, stored.type, stored.data);
    return status == RegistryStatus::Ok ? kHostOk : kHostFail;
}

}  // namespace orvex
