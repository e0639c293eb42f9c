#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "support/MappedFile.h"
#include "support/SourceWindow.h"

namespace orvex {

/// An entry of a TIFF directory.
struct TiffTag {
    static constexpr std::uint16_t kAscii = 2;
    static constexpr std::uint16_t kShort = 3;
    static constexpr std::uint16_t kDouble = 12;

    std::uint16_t id = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t valueAt = 0;  ///< offset in the file of a value that fits into the entry
    bool isInside = false;      ///< the values are in the entry, not where it points to
};

/// The first directory of a TIFF file, classic or big, read from the file itself.
class TiffTags {
  public:
    /// No tags if the file cannot be opened or is no TIFF.
    explicit TiffTags(const std::wstring& path);

    /// The first tag of an id; nullopt if there is none among the first 256.
    std::optional<TiffTag> Find(std::uint16_t id) const;
    /// True if an id stands in the directory more than once, or the directory is longer than is read.
    bool IsOdd() const { return isOdd_; }
    /// Values of a tag as bytes, numbers of `size` bytes each in this machine's order; empty if they are not
    /// whole in the file or take more than 64 KiB.
    std::string Values(const TiffTag& tag, unsigned size);
    /// A number at an offset of the file; 0 beyond its end. `size`: bytes, at most 8.
    std::uint64_t Number(std::uint64_t at, unsigned size);

  private:
    struct Layout;

    void ReadDirectory(const Layout& layout);
    std::uint64_t NumberOf(std::span<const std::byte> bytes) const;

    MappedFile file_;
    std::optional<SourceWindow> window_;
    bool isBigEndian_ = false;
    bool isOdd_ = false;
    unsigned offsetSize_ = 0;
    std::vector<TiffTag> tags_;
};

}  // namespace orvex
