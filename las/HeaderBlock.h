#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "las/LasHeader.h"
#include "support/MappedFile.h"

namespace orvex {

/// The memory of a header block: a private copy, or a writable view of the file. Move-only.
class HeaderBlock {
  public:
    /// Reads bytes of a file as MappedFile::ReadAt does.
    using ReadBytes =
        std::function<SystemError(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read)>;

    enum class Outcome { Ready, TooShort, Failed };

    /// Copies the header: 227 bytes, which must be there; 8 more when the header size is above 227 (zeros
    /// where the file ends before); up to 140 more when it is above 235.
    Outcome Copy(const ReadBytes& read);
    /// Maps the first 375 bytes for writing, or 227 of a shorter file.
    Outcome Map(const MappedFile& file);

    /// Lives as long as the block.
    LasHeader Header() const;
    bool IsMapped() const { return static_cast<bool>(view_); }

  private:
    std::unique_ptr<std::byte[]> copy_;
    MappedView view_;
};

}  // namespace orvex
