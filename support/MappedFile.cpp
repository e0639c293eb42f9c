// What the platforms have in common: the ownership of handles and views.
#include "support/MappedFile.h"

#include <utility>

namespace orvex {

MappedView::MappedView(std::byte* base, std::size_t baseLength, std::size_t skip, std::size_t length)
    : base_(base), baseLength_(baseLength), skip_(skip), length_(length) {}

MappedView::MappedView(MappedView&& other) noexcept
    : base_(std::exchange(other.base_, nullptr)),
      baseLength_(other.baseLength_),
      skip_(other.skip_),
      length_(other.length_) {}

MappedView& MappedView::operator=(MappedView&& other) noexcept {
    MappedView taken(std::move(other));
    std::swap(base_, taken.base_);
    std::swap(baseLength_, taken.baseLength_);
    std::swap(skip_, taken.skip_);
    std::swap(length_, taken.length_);
    return *this;
}

MappedView::~MappedView() {
    Unmap();
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : handle_(std::exchange(other.handle_, kNone)),
      mapping_(std::exchange(other.mapping_, kNone)),
      readOnly_(other.readOnly_) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, kNone);
        mapping_ = std::exchange(other.mapping_, kNone);
        readOnly_ = other.readOnly_;
    }
    return *this;
}

MappedFile::~MappedFile() {
    Close();
}

}  // namespace orvex
