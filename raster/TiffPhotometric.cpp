#include "raster/TiffPhotometric.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>

#include "support/Text.h"

namespace orvex {
namespace {

constexpr unsigned kPhotometric = 262;
constexpr unsigned kShort = 3;  ///< the tag's type
constexpr int kClassic = 42;
constexpr int kBig = 43;
/// Tags stand in ascending order, so that this one is among the first.
constexpr std::uint64_t kMostTags = 256;

/// Numbers at places of a TIFF; 0 beyond its end.
class Tiff {
  public:
    explicit Tiff(const std::wstring& path) : file_(ToPath(path), std::ios::binary) {
        const std::uint64_t order = Number(0, 2);
        isBigEndian_ = order == 0x4D4D;
        isTiff_ = isBigEndian_ || order == 0x4949;
    }

    bool IsTiff() const { return isTiff_; }

    std::uint64_t Number(std::uint64_t at, unsigned size) {
        unsigned char bytes[8] = {};
        if (at > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max())) {
            return 0;
        }
        file_.clear();
        file_.seekg(static_cast<std::streamoff>(at));
        file_.read(reinterpret_cast<char*>(bytes), size);
        if (file_.gcount() != static_cast<std::streamsize>(size)) {
            return 0;
        }
        std::uint64_t number = 0;
        for (unsigned i = 0; i < size; ++i) {
            number = number << 8U | bytes[isBigEndian_ ? i : size - 1 - i];
        }
        return number;
    }

  private:
    std::ifstream file_;
    bool isBigEndian_ = false;
    bool isTiff_ = false;
};

/// How the two formats lay out a directory, in bytes.
struct Layout {
    std::uint64_t directoryAt;
    unsigned offsetSize;
    unsigned countSize;
    unsigned tagSize;
    unsigned valueIn;  ///< within the tag
};
constexpr Layout kClassicLayout{4, 4, 2, 12, 8};
constexpr Layout kBigLayout{8, 8, 8, 20, 12};

}  // namespace

std::optional<int> ReadTiffPhotometric(const std::wstring& path) {
    Tiff tiff(path);
    const auto version = static_cast<int>(tiff.Number(2, 2));
    if (!tiff.IsTiff() || (version != kClassic && version != kBig)) {
        return std::nullopt;
    }
    const Layout& layout = version == kBig ? kBigLayout : kClassicLayout;
    const std::uint64_t directory = tiff.Number(layout.directoryAt, layout.offsetSize);
    const std::uint64_t tags = std::min(tiff.Number(directory, layout.countSize), kMostTags);
    if (directory > std::numeric_limits<std::uint64_t>::max() / 2) {
        return std::nullopt;
    }
    for (std::uint64_t i = 0; i < tags; ++i) {
        const std::uint64_t tag = directory + layout.countSize + i * layout.tagSize;
        if (tiff.Number(tag, 2) == kPhotometric) {
            const bool isShort = tiff.Number(tag + 2, 2) == kShort;
            return isShort ? std::optional(static_cast<int>(tiff.Number(tag + layout.valueIn, 2)))
                           : std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace orvex
