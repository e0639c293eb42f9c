#pragma once
// Bounded reads of little-endian and big-endian numbers.
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>

namespace orvex {

static_assert(std::endian::native == std::endian::little, "reads copy little-endian bytes as they are");

/// Bounds-checked view of bytes. Offsets count from the start of the view.
class ByteReader {
  public:
    explicit ByteReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::uint64_t Size() const { return bytes_.size(); }

    /// True if `length` bytes from `offset` lie inside; cannot overflow.
    bool Contains(std::uint64_t offset, std::uint64_t length) const {
        return offset <= bytes_.size() && length <= bytes_.size() - offset;
    }

    /// Value at an offset; nullopt if it does not lie inside.
    template <typename T>
    requires std::integral<T> || std::floating_point<T> std::optional<T> TryRead(std::uint64_t offset)
    const {
        if (!Contains(offset, sizeof(T))) {
            return std::nullopt;
        }
        T value;
        std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        return value;
    }

    /// Value at an offset; 0 if it does not lie inside.
    template <typename T>
    T Read(std::uint64_t offset) const {
        return TryRead<T>(offset).value_or(T{});
    }

    /// The same of a big-endian number.
    template <std::unsigned_integral T>
    T ReadBig(std::uint64_t offset) const {
        T value = 0;
        if (Contains(offset, sizeof(T))) {
            for (const std::byte byte : bytes_.subspan(offset, sizeof(T))) {
                value = static_cast<T>((value << 8U) | std::to_integer<T>(byte));
            }
        }
        return value;
    }

    /// Bytes from an offset, clipped to the view.
    std::span<const std::byte> Bytes(std::uint64_t offset, std::uint64_t length) const {
        if (offset >= bytes_.size()) {
            return {};
        }
        const std::uint64_t rest = bytes_.size() - offset;
        return bytes_.subspan(offset, length < rest ? length : rest);
    }

    /// Text of a fixed-size field up to its first zero byte.
    std::string FixedText(std::uint64_t offset, std::uint64_t length) const {
        const auto field = Bytes(offset, length);
        const auto* text = reinterpret_cast<const char*>(field.data());
        return {text, field.empty() ? 0 : strnlen(text, field.size())};
    }

  private:
    std::span<const std::byte> bytes_;
};

}  // namespace orvex
