#include "support/com/RasterDetailItems.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orvex {
namespace {

constexpr std::wstring_view kDriver = L"Driver";
constexpr std::wstring_view kTransform = L"Transform";
constexpr std::wstring_view kSidecars = L"Sidecar";
constexpr std::wstring_view kWarnings = L"Warning";
constexpr std::size_t kLongestList = 1000;

/// Name of a detail, and the member that holds it.
template <typename Owner>
struct Detail {
    std::wstring_view name;
    std::variant<std::wstring Owner::*, std::int32_t Owner::*, std::uint64_t Owner::*, bool Owner::*,
                 double Owner::*, std::optional<double> Owner::*>
        member;
};

using File = RasterProperties;
constexpr Detail<File> kFileDetails[] = {
    {kDriver, &File::driver},
    {L"Format", &File::format},
    {L"Compression", &File::compression},
    {L"Interleave", &File::interleave},
    {L"PixelIs", &File::pixelIs},
    {L"Acquired", &File::acquired},
    {L"ControlPoints", &File::controlPoints},
    {L"HasRpc", &File::hasRpc},
    {L"TotalBytes", &File::totalBytes},
};

using Band = RasterBandProperties;
constexpr Detail<Band> kBandDetails[] = {
    {L"DataType", &Band::dataType},
    {L"Bits", &Band::bits},
    {L"BlockWidth", &Band::blockWidth},
    {L"BlockHeight", &Band::blockHeight},
    {L"ColorInterpretation", &Band::colorInterpretation},
    {L"Nodata", &Band::nodata},
    {L"Minimum", &Band::minimum},
    {L"Maximum", &Band::maximum},
    {L"Overviews", &Band::overviews},
    {L"Description", &Band::description},
    {L"Unit", &Band::unit},
    {L"Scale", &Band::scale},
    {L"Offset", &Band::offset},
};

struct ValueMaker {
    // An empty text counts as not stated.
    SettingValue operator()(const std::wstring& text) const {
        return text.empty() ? SettingValue() : SettingValue(text);
    }
    SettingValue operator()(std::int32_t number) const { return number; }
    SettingValue operator()(std::uint64_t number) const { return static_cast<double>(number); }
    SettingValue operator()(bool flag) const { return static_cast<std::int16_t>(flag ? -1 : 0); }
    SettingValue operator()(double number) const { return number; }
    SettingValue operator()(const std::optional<double>& number) const {
        return number ? SettingValue(*number) : SettingValue();
    }
};

std::optional<double> NumberIn(const SettingValue& value) {
    if (const auto* number = std::get_if<double>(&value)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::int16_t>(&value)) {
        return *number;
    }
    return std::nullopt;
}

/// Takes a value over into a member, which stays as it is when the value is no such one.
struct ValueTaker {
    const SettingValue& value;

    void operator()(std::wstring& text) const {
        if (const auto* given = std::get_if<std::wstring>(&value)) {
            text = *given;
        }
    }
    void operator()(std::int32_t& number) const {
        const std::optional<double> given = NumberIn(value);
        if (given && std::abs(*given) <= std::numeric_limits<std::int32_t>::max()) {
            number = static_cast<std::int32_t>(*given);
        }
    }
    void operator()(std::uint64_t& number) const {
        constexpr double kExact = 9007199254740992.0;  // whole numbers up to here are a double's own
        const std::optional<double> given = NumberIn(value);
        if (given && *given >= 0 && *given <= kExact) {
            number = static_cast<std::uint64_t>(*given);
        }
    }
    void operator()(bool& flag) const { flag = NumberIn(value).value_or(flag ? 1 : 0) != 0; }
    void operator()(double& number) const { number = NumberIn(value).value_or(number); }
    void operator()(std::optional<double>& number) const {
        if (const std::optional<double> given = NumberIn(value)) {
            number = given;
        }
    }
};

template <typename Owner, std::size_t count>
SettingValue Find(const Detail<Owner> (&details)[count], const Owner& owner, std::wstring_view name) {
    const auto* found = std::find_if(std::begin(details), std::end(details),
                                     [&](const Detail<Owner>& detail) { return detail.name == name; });
    if (found == std::end(details)) {
        return {};
    }
    return std::visit([&](auto member) { return ValueMaker()(owner.*member); }, found->member);
}

template <typename Owner, std::size_t count>
void Fill(const Detail<Owner> (&details)[count], Owner& owner, std::int32_t index,
          const RasterDetailSource& source) {
    for (const Detail<Owner>& detail : details) {
        const SettingValue value = source(detail.name, index);
        std::visit([&](auto member) { ValueTaker{value}(owner.*member); }, detail.member);
    }
}

template <typename List>
SettingValue Entry(const List& list, std::size_t position) {
    return position < list.size() ? SettingValue(list[position]) : SettingValue();
}

std::vector<std::wstring> TextList(std::wstring_view name, const RasterDetailSource& source) {
    std::vector<std::wstring> texts;
    while (texts.size() < kLongestList) {
        SettingValue value = source(name, static_cast<std::int32_t>(texts.size()) + 1);
        auto* text = std::get_if<std::wstring>(&value);
        if (text == nullptr) {
            break;
        }
        texts.push_back(std::move(*text));
    }
    return texts;
}

// All of it or none.
std::optional<std::array<double, 6>> Transform(const RasterDetailSource& source) {
    std::array<double, 6> transform{};
    for (std::size_t i = 0; i < transform.size(); ++i) {
        const std::optional<double> number = NumberIn(source(kTransform, static_cast<std::int32_t>(i) + 1));
        if (!number || !std::isfinite(*number)) {
            return std::nullopt;
        }
        transform[i] = *number;
    }
    return transform;
}

}  // namespace

SettingValue RasterDetail(const RasterProperties& properties, std::wstring_view name, std::int32_t index) {
    if (!properties.hasDetails || index < 0) {
        return {};
    }
    if (index == 0) {
        return Find(kFileDetails, properties, name);
    }
    const std::size_t position = static_cast<std::size_t>(index) - 1;
    if (name == kSidecars) {
        return Entry(properties.sidecars, position);
    }
    if (name == kWarnings) {
        return Entry(properties.warnings, position);
    }
    if (name == kTransform) {
        return properties.transform ? Entry(*properties.transform, position) : SettingValue();
    }
    return position < properties.bandDetails->size()
               ? Find(kBandDetails, (*properties.bandDetails)[position], name)
               : SettingValue();
}

void ReadRasterDetails(const RasterDetailSource& source, RasterProperties& properties) {
    const SettingValue driver = source(kDriver, 0);
    properties.hasDetails = std::holds_alternative<std::wstring>(driver);
    if (!properties.hasDetails) {
        return;
    }
    Fill(kFileDetails, properties, 0, source);
    properties.transform = Transform(source);
    properties.sidecars = TextList(kSidecars, source);
    properties.warnings = TextList(kWarnings, source);
    const auto bands = static_cast<std::size_t>(std::max(properties.bands, 0));
    std::vector<RasterBandProperties> details(std::min(bands, kMostBandsDescribed));
    for (std::size_t i = 0; i < details.size(); ++i) {
        Fill(kBandDetails, details[i], static_cast<std::int32_t>(i) + 1, source);
    }
    properties.bandDetails = std::move(details);
}

}  // namespace orvex
