#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/MappedFile.h"

namespace orvex {

/// Path of the file beside `path` with another extension (".shx"), in any letter case; empty if there is
/// none.
std::wstring SidecarOf(const std::wstring& path, std::wstring_view extension);

/// A regular file open for reading. Move-only.
class RegularFile {
  public:
    /// Throws LDataError with the reason, which does not name the file.
    explicit RegularFile(const std::wstring& path);

    std::uint64_t Size() const { return size_; }
    /// Up to `length` bytes from an offset; fewer only at the end of the file. Throws LDataError.
    std::vector<std::byte> Read(std::uint64_t offset, std::size_t length) const;

  private:
    MappedFile file_;
    std::uint64_t size_ = 0;
};

}  // namespace orvex
