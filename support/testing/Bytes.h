#pragma once
#include <cstring>
#include <string>

namespace orvex::testing {

/// The bytes of numbers, little-endian, one after the other.
template <typename... Numbers>
std::string Bytes(Numbers... numbers) {
    std::string bytes;
    const auto append = [&bytes](auto number) {
        const std::size_t end = bytes.size();
        bytes.resize(end + sizeof(number));
        std::memcpy(bytes.data() + end, &number, sizeof(number));
    };
    (append(numbers), ...);
    return bytes;
}

/// The little-endian number at a place that the bytes have.
template <typename T>
T At(const std::string& bytes, std::size_t offset) {
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
}

}  // namespace orvex::testing
