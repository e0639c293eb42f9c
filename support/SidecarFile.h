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

/// Text of the ".prj" file beside a file, without a byte order mark and blanks at its end; empty if there is
/// none. Throws LDataError with the reason when it cannot be read or has more than a mebibyte.
std::string ReadPrjBeside(const std::wstring& path);

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
