#include "las/VlrArea.h"

#include <algorithm>

namespace orvex {

SystemError VlrArea::Load(const MappedFile& file, std::uint64_t fileSize, std::uint64_t length,
                          bool readOnly) {
    const std::uint64_t held = std::min(length, fileSize);
    if (held == 0) {
        return 0;
    }
    if (readOnly && held <= kLargestCopy) {
        return Copy(file, static_cast<std::size_t>(held));
    }
    return file.Map(0, held, !readOnly, view_);
}

SystemError VlrArea::Copy(const MappedFile& file, std::size_t length) {
    copy_ = std::make_unique_for_overwrite<std::byte[]>(length);
    return file.ReadAt(0, {copy_.get(), length}, copyLength_);
}

std::span<const std::byte> VlrArea::Bytes() const {
    return view_ ? std::span<const std::byte>(view_.Bytes())
                 : std::span<const std::byte>(copy_.get(), copyLength_);
}

}  // namespace orvex
