#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

#include "support/Files.h"

namespace orvex {

/// Bytes that are read in parts: an open file, or one on a server.
class ByteSource {
  public:
    /// ReadAt's error where the source gives no more, although there is more: as much as it may give has been
    /// read.
    static constexpr SystemError kNoMoreReads = -1;

    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// Size in bytes.
    virtual SystemError Size(std::uint64_t& size) const = 0;
    /// Reads up to `buffer.size()` bytes from an offset; `read` is less only at the end or after an error.
    virtual SystemError ReadAt(std::uint64_t offset, std::span<std::byte> buffer,
                               std::size_t& read) const = 0;
};

}  // namespace orvex
