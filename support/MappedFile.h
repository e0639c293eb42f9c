#pragma once
// Files and views of them: the platform seam under the LAS reader.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "support/SystemError.h"

namespace orvex {

/// A view of a part of a file in memory; unmapped when destroyed. Move-only.
class MappedView {
  public:
    MappedView() = default;
    MappedView(std::byte* base, std::size_t baseLength, std::size_t skip, std::size_t length);
    MappedView(MappedView&& other) noexcept;
    MappedView& operator=(MappedView&& other) noexcept;
    ~MappedView();

    /// The bytes asked for (the system's alignment is hidden).
    std::span<std::byte> Bytes() const { return {base_ + skip_, length_}; }
    explicit operator bool() const { return base_ != nullptr; }

  private:
    void Unmap() noexcept;

    std::byte* base_ = nullptr;
    std::size_t baseLength_ = 0;
    std::size_t skip_ = 0;
    std::size_t length_ = 0;
};

/// An open file. Nothing keeps it open but this object. Move-only; positions are explicit, so there is no
/// file pointer.
class MappedFile {
  public:
    MappedFile() = default;
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    ~MappedFile();

    /// Opens for reading, or for reading and writing; others may read and write it meanwhile. The file must
    /// exist.
    SystemError Open(const std::wstring& path, bool readOnly);
    /// Makes the mapping that views are taken of, with the access of the open file. Needed once, before Map.
    /// Windows refuses an empty file (ERROR_FILE_INVALID); Linux never fails.
    SystemError CreateMapping();
    /// Closes file and mapping; views stay.
    void Close();
    bool IsOpen() const { return handle_ != kNone; }

    /// Size in bytes.
    SystemError Size(std::uint64_t& size) const;
    /// Reads up to `buffer.size()` bytes from an offset; `read` is less only at the end of the file.
    SystemError ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const;
    /// Maps bytes of the file; `writable` needs a file opened for writing. The part must lie inside the file.
    SystemError Map(std::uint64_t offset, std::uint64_t length, bool writable, MappedView& view) const;

    /// Views on the file start at multiples of this many bytes.
    static std::uint64_t AllocationGranularity();

  private:
    static constexpr std::intptr_t kNone = -1;
    std::intptr_t handle_ = kNone;
    std::intptr_t mapping_ = kNone;
    bool readOnly_ = true;
};

}  // namespace orvex
