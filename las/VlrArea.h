#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "support/MappedFile.h"

namespace orvex {

/// No more bytes of one file than this are copied into private memory; larger areas are mapped.
inline constexpr std::uint64_t kLargestCopy = std::uint64_t{64} << 20U;

/// The file from its first byte up to its point data, in memory. Move-only.
class VlrArea {
  public:
    /// Loads the first `length` bytes, or the whole file when its size is less: read-write files are mapped,
    /// others are copied (mapped when large).
    SystemError Load(const MappedFile& file, std::uint64_t fileSize, std::uint64_t length, bool readOnly);

    std::span<const std::byte> Bytes() const;
    bool IsMapped() const { return static_cast<bool>(view_); }

  private:
    SystemError Copy(const MappedFile& file, std::size_t length);

    std::unique_ptr<std::byte[]> copy_;
    std::size_t copyLength_ = 0;
    MappedView view_;
};

}  // namespace orvex
