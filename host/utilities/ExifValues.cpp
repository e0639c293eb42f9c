#include "host/utilities/ExifValues.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <exiv2/exiv2.hpp>
#include <limits>

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// A number, or NaN for a fraction with denominator 0.
double NumberOf(const Exiv2::Value& value, long index) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    switch (value.typeId()) {
        case Exiv2::unsignedRational: {
            // Exiv2 hands both parts on as signed numbers of the same bits.
            const auto [top, bottom] = value.toRational(index);
            return bottom == 0 ? kNan
                               : static_cast<double>(static_cast<std::uint32_t>(top)) /
                                     static_cast<double>(static_cast<std::uint32_t>(bottom));
        }
        case Exiv2::signedRational: {
            const auto [top, bottom] = value.toRational(index);
            return bottom == 0 ? kNan : static_cast<double>(top) / bottom;
        }
        case Exiv2::tiffFloat:
            return static_cast<double>(value.toFloat(index));
        case Exiv2::tiffDouble: {
            const auto* doubles = dynamic_cast<const Exiv2::DoubleValue*>(&value);
            return doubles == nullptr ? kNan : doubles->value_.at(static_cast<std::size_t>(index));
        }
        case Exiv2::unsignedByte:
        case Exiv2::unsignedShort:
        case Exiv2::unsignedLong:
        case Exiv2::signedByte:
        case Exiv2::signedShort:
        case Exiv2::signedLong:
            return static_cast<double>(value.toLong(index));
        default:
            return kNan;
    }
}

bool IsZeroFraction(const Exiv2::Value& value, long index) {
    return (value.typeId() == Exiv2::unsignedRational || value.typeId() == Exiv2::signedRational) &&
           value.toRational(index).first == 0;
}

}  // namespace

struct ExifValues::Data {
    Exiv2::ExifData entries;

    const Exiv2::Value* Find(const char* key) const {
        const auto found = entries.findKey(Exiv2::ExifKey(key));
        return found == entries.end() || found->count() == 0 ? nullptr : &found->value();
    }
};

ExifValues::ExifValues(const std::string& block) : data_(std::make_unique<Data>()) {
    if (!block.empty()) {
        try {
            Exiv2::ExifParser::decode(data_->entries, reinterpret_cast<const Exiv2::byte*>(block.data()),
                                      static_cast<std::uint32_t>(block.size()));
        } catch (const Exiv2::AnyError&) {
            throw LDataError(orvex::Text(text::kPhotoDamaged));
        }
    }
}

ExifValues::~ExifValues() = default;

std::string ExifValues::Text(const char* key) const {
    const Exiv2::Value* value = data_->Find(key);
    if (value == nullptr || value->typeId() != Exiv2::asciiString) {
        return {};
    }
    std::string text = value->toString();
    text.resize(std::min(text.find('\0'), text.size()));
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    text.resize(last == std::string::npos ? 0 : last + 1);
    return text;
}

std::optional<double> ExifValues::Number(const char* key, long index) const {
    const Exiv2::Value* value = data_->Find(key);
    const double number = value == nullptr || index >= value->count()
                              ? std::numeric_limits<double>::quiet_NaN()
                              : NumberOf(*value, index);
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

long ExifValues::Count(const char* key) const {
    const Exiv2::Value* value = data_->Find(key);
    return value == nullptr ? 0 : value->count();
}

std::optional<double> ExifValues::Degrees(const char* key, const char* hemisphereKey) const {
    double degrees = 0;
    double unit = 1;
    const long count = std::min(Count(key), 3L);
    for (long i = 0; i < count; ++i, unit *= 60) {
        std::optional<double> part = Number(key, i);
        // Receivers that state decimal degrees or minutes leave the rest as 0/0.
        if (!part && i > 0 && IsZeroFraction(*data_->Find(key), i)) {
            part = 0;
        }
        if (!part) {
            return std::nullopt;
        }
        degrees += *part / unit;
    }
    const std::string hemisphere = Text(hemisphereKey);
    const bool isNegative = hemisphere.starts_with('S') || hemisphere.starts_with('W') ||
                            hemisphere.starts_with('s') || hemisphere.starts_with('w');
    return count == 0 ? std::nullopt : std::optional(isNegative ? -std::abs(degrees) : degrees);
}

std::optional<double> ExifValues::Altitude() const {
    std::optional<double> altitude = Number("Exif.GPSInfo.GPSAltitude");
    const double reference = Number("Exif.GPSInfo.GPSAltitudeRef").value_or(0);
    // 1: below the sea level; 3: below the ellipsoid.
    if (altitude && (reference == 1 || reference == 3)) {
        altitude = -std::abs(*altitude);
    }
    return altitude;
}

std::optional<double> ExifValues::Direction() const {
    return Text("Exif.GPSInfo.GPSImgDirectionRef") == "M" ? std::nullopt
                                                          : Number("Exif.GPSInfo.GPSImgDirection");
}

std::string ExifValues::GpsTime() const {
    std::string date = Text("Exif.GPSInfo.GPSDateStamp");
    const auto hour = Number("Exif.GPSInfo.GPSTimeStamp", 0);
    const auto minute = Number("Exif.GPSInfo.GPSTimeStamp", 1);
    const auto second = Number("Exif.GPSInfo.GPSTimeStamp", 2);
    const auto isBelow = [](const std::optional<double>& value, double end) {
        return value && *value >= 0 && *value < end;
    };
    if (date.size() != 10 || !isBelow(hour, 24) || !isBelow(minute, 60) || !isBelow(second, 61)) {
        return {};
    }
    date[4] = date[7] = '-';
    const auto whole = static_cast<int>(*second);
    const auto micro = static_cast<int>(std::lround((*second - whole) * 1e6));
    return fmt::format("{} {:02}:{:02}:{:02}.{:06}", date, static_cast<int>(*hour), static_cast<int>(*minute),
                       whole, std::min(micro, 999999));
}

bool ExifValues::IsWgs84() const {
    std::string datum = Text("Exif.GPSInfo.GPSMapDatum");
    std::erase_if(datum, [](unsigned char c) { return std::isalnum(c) == 0; });
    std::ranges::transform(datum, datum.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return datum.empty() || datum == "WGS84" || datum == "WGS1984";
}

}  // namespace orvex
