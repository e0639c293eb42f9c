#include "host/utilities/PhotoBytes.h"

#include <algorithm>

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kMostRead = std::uint64_t{48} << 20U;
// A little more than what cameras write before the first table of their JPEG files; one read gets it.
constexpr std::size_t kWindow = std::size_t{16} << 10U;

}  // namespace

PhotoBytes::PhotoBytes(const std::wstring& path) : left_(kMostRead) {
    // A pipe would keep its reader waiting.
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Missing) {
        throw LDataError(orvex::Text(text::kFileMissing));
    }
    if (kind == FileKind::Folder || kind == FileKind::Other) {
        throw LDataError(orvex::Text(text::kPhotoIsNoFile));
    }
    if (file_.Open(path, true) != 0 || file_.Size(size_) != 0) {
        throw LDataError(orvex::Text(text::kFileOpenRefused));
    }
}

bool PhotoBytes::Fetch(std::uint64_t offset, std::span<std::byte> buffer) {
    std::size_t read = 0;
    if (buffer.size() > left_ || file_.ReadAt(offset, buffer, read) != 0 || read != buffer.size()) {
        return false;
    }
    left_ -= buffer.size();
    return true;
}

bool PhotoBytes::Read(std::uint64_t offset, std::span<std::byte> buffer) {
    if (offset > size_ || buffer.size() > size_ - offset) {
        return false;
    }
    if (buffer.size() > kWindow) {
        return Fetch(offset, buffer);
    }
    const bool isInside = offset >= windowOffset_ && offset + buffer.size() <= windowOffset_ + window_.size();
    if (!isInside) {
        window_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kWindow, size_ - offset)));
        windowOffset_ = offset;
        if (!Fetch(offset, window_)) {
            window_.clear();
            return false;
        }
    }
    if (!buffer.empty()) {
        std::memcpy(buffer.data(), window_.data() + (offset - windowOffset_), buffer.size());
    }
    return true;
}

std::string PhotoBytes::Text(FileRange range, std::uint64_t most) {
    if (range.length > most || range.offset > size_ || range.length > size_ - range.offset) {
        return {};
    }
    std::string text(static_cast<std::size_t>(range.length), '\0');
    return Read(range.offset, std::as_writable_bytes(std::span(text))) ? text : std::string();
}

}  // namespace orvex
