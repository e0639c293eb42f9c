#pragma once
#include <bit>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace orvex {

static_assert(std::endian::native == std::endian::little, "fields are copied as they are");

/// Little-endian fields at their places in a block of zeros, which must have room for them.
class FieldBlock {
  public:
    explicit FieldBlock(std::size_t size) : bytes_(size, '\0') {}

    template <typename T>
    void Put(std::size_t offset, T value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof(T));
    }
    /// The text, cut to the field's size.
    void PutText(std::size_t offset, std::size_t size, std::string_view text) {
        text.copy(bytes_.data() + offset, size);
    }
    std::string Take() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

}  // namespace orvex
