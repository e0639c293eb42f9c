#pragma once
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "support/MappedFile.h"

namespace orvex {

/// Part of a file, in bytes.
struct FileRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

enum class ByteOrder { Little, Big };

/// An image file, read where it is asked for and not as a whole: a photo of 100 MB on a slow drive costs a
/// few pages. A damaged file cannot make it read more than a few megabytes.
class PhotoBytes {
  public:
    /// Throws LDataError with the cause when the path names no file or it cannot be opened.
    explicit PhotoBytes(const std::wstring& path);

    std::uint64_t Size() const { return size_; }

    /// Fills a buffer from an offset. False if the file ends before, or has been read too much of already.
    bool Read(std::uint64_t offset, std::span<std::byte> buffer);

    /// Bytes of a range; empty if it is longer than `most` or Read fails.
    std::string Text(FileRange range, std::uint64_t most);

    template <std::unsigned_integral T>
    std::optional<T> Number(std::uint64_t offset, ByteOrder order) {
        std::array<std::byte, sizeof(T)> bytes{};
        if (!Read(offset, bytes)) {
            return std::nullopt;
        }
        T value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            const std::byte byte = bytes[order == ByteOrder::Big ? i : sizeof(T) - 1 - i];
            value = static_cast<T>((std::uint64_t{value} << 8U) | std::to_integer<std::uint64_t>(byte));
        }
        return value;
    }

  private:
    bool Fetch(std::uint64_t offset, std::span<std::byte> buffer);

    MappedFile file_;
    std::uint64_t size_ = 0;
    std::uint64_t left_;  ///< bytes that may still be read
    std::vector<std::byte> window_;
    std::uint64_t windowOffset_ = 0;
};

}  // namespace orvex
