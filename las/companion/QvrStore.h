#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "support/MappedFile.h"
#include "support/TemporaryFile.h"

namespace orvex {

/// Blocks of bytes, in memory or in one temporary file; any thread.
class QvrStore {
  public:
    using Block = std::uint32_t;

    /// Blocks of at most `blockBytes`, in a temporary file beside `target`, or in memory if that is empty.
    /// Throws LDataError.
    QvrStore(std::size_t blockBytes, const std::wstring& target);

    std::size_t BlockBytes() const { return blockBytes_; }
    /// Keeps a copy of at most BlockBytes() bytes. Throws LDataError.
    Block Put(std::span<const std::byte> bytes);
    /// Reads the first bytes of a block. Throws LDataError.
    void Get(Block block, std::span<std::byte> bytes) const;
    /// Gives the block up; Put uses its space again.
    void Free(Block block);

  private:
    using Memory = std::unique_ptr<std::byte[]>;

    Block NewBlock();
    Block PutIntoMemory(std::span<const std::byte> bytes);
    void Require(SystemError error) const;

    const std::size_t blockBytes_;
    std::optional<TemporaryFile> temporary_;
    MappedFile file_;
    mutable std::mutex lock_;  // of what follows
    std::vector<Block> free_;
    std::vector<Memory> memory_;
    Block count_ = 0;
};

}  // namespace orvex
