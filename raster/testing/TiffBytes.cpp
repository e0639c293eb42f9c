#include "raster/testing/TiffBytes.h"

#include <algorithm>
#include <bit>

namespace orvex::testing {
namespace {

constexpr unsigned kShort = 3;
constexpr unsigned kLong = 4;
constexpr unsigned kDouble = 12;

unsigned SizeOfType(unsigned type) {
    switch (type) {
        case kShort:
            return 2;
        case kLong:
            return 4;
        case kDouble:
        case 16:
            return 8;
        default:
            return 1;
    }
}

}  // namespace

std::string TiffBytes::Number(std::uint64_t number, unsigned size) const {
    std::string bytes;
    for (unsigned i = 0; i < size; ++i) {
        bytes += static_cast<char>(number >> (8 * (isBigEndian_ ? size - 1 - i : i)) & 0xFFU);
    }
    return bytes;
}

TiffBytes& TiffBytes::Add(Entry entry) {
    std::erase_if(entries_, [&](const Entry& other) { return other.tag == entry.tag; });
    const auto place =
        std::ranges::find_if(entries_, [&](const Entry& other) { return other.tag > entry.tag; });
    entries_.insert(place, std::move(entry));
    return *this;
}

TiffBytes& TiffBytes::Tag(unsigned tag, unsigned type, const std::vector<std::uint64_t>& values) {
    std::string bytes;
    for (const std::uint64_t value : values) {
        bytes += Number(value, SizeOfType(type));
    }
    return Add({tag, type, values.size(), std::move(bytes)});
}

TiffBytes& TiffBytes::Doubles(unsigned tag, const std::vector<double>& values) {
    std::vector<std::uint64_t> numbers;
    std::ranges::transform(values, std::back_inserter(numbers),
                           [](double value) { return std::bit_cast<std::uint64_t>(value); });
    return Tag(tag, kDouble, numbers);
}

TiffBytes& TiffBytes::Claim(unsigned tag, unsigned type, std::uint64_t count, std::uint64_t at) {
    return Add({tag, type, count, Number(at, isBig_ ? 8 : 4), true});
}

TiffBytes& TiffBytes::Image(std::uint64_t width, std::uint64_t height, std::uint64_t at,
                            std::uint64_t bytes) {
    return Tag(256, kLong, {width})
        .Tag(257, kLong, {height})
        .Tag(258, kShort, {8})
        .Tag(259, kShort, {1})
        .Tag(262, kShort, {1})
        .Tag(273, kLong, {at})
        .Tag(277, kShort, {1})
        .Tag(278, kLong, {height})
        .Tag(279, kLong, {bytes});
}

TiffBytes& TiffBytes::Next(std::uint64_t at) {
    next_ = at;
    return *this;
}

std::string TiffBytes::Build() const {
    const unsigned offsetSize = isBig_ ? 8 : 4;
    std::string file = isBigEndian_ ? "MM" : "II";
    file += Number(isBig_ ? 43 : 42, 2);
    file += isBig_ ? Number(8, 2) + Number(0, 2) : std::string();
    file += Number(DirectoryAt(), offsetSize);
    file += Number(entries_.size(), isBig_ ? 8 : 2);
    const std::uint64_t tagSize = isBig_ ? 20 : 12;
    const std::uint64_t valuesAt = file.size() + entries_.size() * tagSize + offsetSize;
    std::string values;
    for (const Entry& entry : entries_) {
        file += Number(entry.tag, 2) + Number(entry.type, 2) + Number(entry.count, offsetSize);
        if (entry.isClaim || entry.values.size() <= offsetSize) {
            file += entry.values + std::string(offsetSize - entry.values.size(), '\0');
        } else {
            file += Number(valuesAt + values.size(), offsetSize);
            values += entry.values;
        }
    }
    return file + Number(next_, offsetSize) + values;
}

}  // namespace orvex::testing
