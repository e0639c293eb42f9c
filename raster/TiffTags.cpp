#include "raster/TiffTags.h"

#include <algorithm>
#include <limits>

namespace orvex {
namespace {

constexpr std::uint64_t kMostTags = 256;
constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 10U;
constexpr std::uint64_t kClassic = 42;
constexpr std::uint64_t kBig = 43;
constexpr std::uint64_t kLittleEndian = 0x4949;
constexpr std::uint64_t kBigEndian = 0x4D4D;

}  // namespace

/// Layout of a directory in bytes.
struct TiffTags::Layout {
    std::uint64_t directoryAt;
    unsigned offsetSize;  ///< of offsets, and of the number of values
    unsigned countSize;   ///< of the number of tags
    unsigned tagSize;
};

TiffTags::TiffTags(const std::wstring& path) {
    constexpr Layout kClassicLayout{4, 4, 2, 12};
    constexpr Layout kBigLayout{8, 8, 8, 20};
    if (file_.Open(path, true) != 0) {
        return;
    }
    window_.emplace(file_, file_.OpenedSize());
    const std::uint64_t order = Number(0, 2);
    isBigEndian_ = order == kBigEndian;
    const std::uint64_t version = order == kLittleEndian || order == kBigEndian ? Number(2, 2) : 0;
    if (version == kClassic || version == kBig) {
        ReadDirectory(version == kBig ? kBigLayout : kClassicLayout);
    }
}

void TiffTags::ReadDirectory(const Layout& layout) {
    offsetSize_ = layout.offsetSize;
    const std::uint64_t directory = Number(layout.directoryAt, layout.offsetSize);
    if (directory > std::numeric_limits<std::uint64_t>::max() / 2) {
        return;
    }
    const std::uint64_t stated = Number(directory, layout.countSize);
    isOdd_ = stated > kMostTags;
    const std::uint64_t count = std::min(stated, kMostTags);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t at = directory + layout.countSize + i * layout.tagSize;
        TiffTag tag;
        tag.id = static_cast<std::uint16_t>(Number(at, 2));
        tag.type = static_cast<std::uint16_t>(Number(at + 2, 2));
        tag.count = Number(at + 4, layout.offsetSize);
        tag.valueAt = at + 4 + layout.offsetSize;
        isOdd_ = isOdd_ || Find(tag.id);
        tags_.push_back(tag);
    }
}

std::optional<TiffTag> TiffTags::Find(std::uint16_t id) const {
    const auto found = std::ranges::find(tags_, id, &TiffTag::id);
    return found == tags_.end() ? std::nullopt : std::optional(*found);
}

std::string TiffTags::Values(const TiffTag& tag, unsigned size) {
    if (tag.count > kMostBytes / size) {
        return {};
    }
    const std::uint64_t length = tag.count * size;
    const std::uint64_t at = length <= offsetSize_ ? tag.valueAt : Number(tag.valueAt, offsetSize_);
    const std::span<const std::byte> bytes = window_->Bytes(at, length);
    if (bytes.size() < length) {
        return {};
    }
    std::string values(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (std::size_t i = 0; isBigEndian_ && i < values.size(); i += size) {
        std::reverse(values.begin() + static_cast<std::ptrdiff_t>(i),
                     values.begin() + static_cast<std::ptrdiff_t>(i + size));
    }
    return values;
}

std::uint64_t TiffTags::Number(std::uint64_t at, unsigned size) {
    const std::span<const std::byte> bytes = window_->Bytes(at, size);
    return bytes.size() == size ? NumberOf(bytes) : 0;
}

std::uint64_t TiffTags::NumberOf(std::span<const std::byte> bytes) const {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::byte byte = bytes[isBigEndian_ ? i : bytes.size() - 1 - i];
        number = number << 8U | std::to_integer<std::uint64_t>(byte);
    }
    return number;
}

}  // namespace orvex
