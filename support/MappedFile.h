#pragma once
// Open files and views of them in memory: the platform seam under the LAS reader.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "support/ByteSource.h"
#include "support/Files.h"

namespace orvex {

/// A part of a file mapped into memory; unmapped when destroyed. Move-only.
class MappedView {
  public:
    MappedView() = default;
    MappedView(std::byte* base, std::size_t baseLength, std::size_t skip, std::size_t length)
        : base_(base), baseLength_(baseLength), skip_(skip), length_(length) {}
    MappedView(MappedView&& other) noexcept { Swap(other); }
    MappedView& operator=(MappedView other) noexcept {
        Swap(other);
        return *this;
    }
    ~MappedView() { Unmap(); }

    /// The bytes that were asked for, without what the system's alignment added in front.
    std::span<std::byte> Bytes() const { return {base_ + skip_, length_}; }
    explicit operator bool() const { return base_ != nullptr; }

  private:
    void Swap(MappedView& other) noexcept {
        std::swap(base_, other.base_);
        std::swap(baseLength_, other.baseLength_);
        std::swap(skip_, other.skip_);
        std::swap(length_, other.length_);
    }
    void Unmap() noexcept;

    std::byte* base_ = nullptr;
    std::size_t baseLength_ = 0;
    std::size_t skip_ = 0;
    std::size_t length_ = 0;
};

/// An open file; only this object keeps it open. Move-only. Offsets are explicit, so there is no file
/// pointer.
class MappedFile final : public ByteSource {
  public:
    MappedFile() = default;
    MappedFile(MappedFile&& other) noexcept { Swap(other); }
    MappedFile& operator=(MappedFile other) noexcept {
        Swap(other);
        return *this;
    }
    ~MappedFile() override { Close(); }

    /// Opens an existing file for reading, or for reading and writing; others may read and write it
    /// meanwhile.
    SystemError Open(const std::wstring& path, bool readOnly);
    /// Creates the mapping, with the access of the open file. Needed once, before Map. Windows refuses an
    /// empty file (ERROR_FILE_INVALID); Linux never fails.
    SystemError CreateMapping();
    /// Closes file and mapping; views stay valid.
    void Close();
    bool IsOpen() const { return handle_ != kNone; }
    /// Size in bytes and modification time when the file was opened.
    std::uint64_t OpenedSize() const { return openedSize_; }
    FileTime OpenedTime() const { return openedTime_; }

    SystemError Size(std::uint64_t& size) const override;
    SystemError ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const override;
    /// Writes bytes at an offset of a file opened for writing; it grows as needed.
    SystemError WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) const;
    /// Gives the file a size and, where the file system can, the space on the drive, so that a full drive
    /// shows now. New bytes are zero.
    SystemError Reserve(std::uint64_t size) const;
    /// Returns when all that was written has reached the drive.
    SystemError Sync() const;
    /// Maps a range that lies inside the file; `writable` needs a file opened for writing.
    SystemError Map(std::uint64_t offset, std::uint64_t length, bool writable, MappedView& view) const;

    /// The system maps files from multiples of this many bytes.
    static std::uint64_t AllocationGranularity();

  private:
    static constexpr std::intptr_t kNone = -1;

    void Swap(MappedFile& other) noexcept {
        std::swap(handle_, other.handle_);
        std::swap(mapping_, other.mapping_);
        std::swap(readOnly_, other.readOnly_);
        std::swap(openedSize_, other.openedSize_);
        std::swap(openedTime_, other.openedTime_);
    }

    std::intptr_t handle_ = kNone;
    std::intptr_t mapping_ = kNone;
    bool readOnly_ = true;
    std::uint64_t openedSize_ = 0;
    FileTime openedTime_;
};

}  // namespace orvex
