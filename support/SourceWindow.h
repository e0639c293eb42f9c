#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "support/ByteReader.h"
#include "support/ByteSource.h"

namespace orvex {

/// The bytes of a source through a window in memory, so that small reads beside each other are one read of
/// the source.
class SourceWindow {
  public:
    /// The header and the records of most LAS files.
    static constexpr std::size_t kNear = 4096;

    /// `size`: of the source, which must outlive the window; bytes behind it are read only if asked for.
    /// `ahead`: bytes of a read, at least.
    SourceWindow(const ByteSource& source, std::uint64_t size, std::uint64_t ahead = kNear)
        : source_(source), size_(size), ahead_(ahead) {}
    SourceWindow(const SourceWindow&) = delete;
    SourceWindow& operator=(const SourceWindow&) = delete;

    std::uint64_t Size() const { return size_; }
    /// The bytes from an offset; fewer at the end of the source or on an error. Valid until the next call.
    std::span<const std::byte> Bytes(std::uint64_t offset, std::uint64_t length) {
        if (offset < start_ || offset + length > start_ + window_.size()) {
            Read(offset, length);
        }
        return ByteReader(window_).Bytes(offset - start_, length);
    }
    /// Of the last read.
    SystemError Error() const { return error_; }

  private:
    void Read(std::uint64_t offset, std::uint64_t length) {
        const std::uint64_t rest = size_ - std::min(size_, offset);
        const auto wanted = static_cast<std::size_t>(std::max(length, std::min(ahead_, rest)));
        if (wanted > kNear) {
            far_.resize(wanted);
        }
        const std::span<std::byte> room = std::span(wanted > kNear ? far_.data() : near_.data(), wanted);
        std::size_t read = 0;
        error_ = source_.ReadAt(offset, room, read);
        start_ = offset;
        window_ = room.first(error_ == 0 ? read : 0);
    }

    const ByteSource& source_;
    const std::uint64_t size_;
    const std::uint64_t ahead_;
    std::uint64_t start_ = 0;
    std::span<const std::byte> window_;
    SystemError error_ = 0;
    std::vector<std::byte> far_;
    std::array<std::byte, kNear> near_;  // not initialised: it is read into
};

}  // namespace orvex
