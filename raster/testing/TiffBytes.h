#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace orvex::testing {

/// A TIFF written byte by byte, as broken as a test wants it: header, one directory, then the values that do
/// not fit into their tags.
class TiffBytes {
  public:
    enum class Format { Classic, Big };
    enum class Order { Little, Big };

    explicit TiffBytes(Format format = Format::Classic, Order order = Order::Little)
        : isBig_(format == Format::Big), isBigEndian_(order == Order::Big) {}

    /// A tag of integers, of TIFF type 1 (one byte each), 3 (two), 4 (four) or 16 (eight).
    TiffBytes& Tag(unsigned tag, unsigned type, const std::vector<std::uint64_t>& values);
    /// A tag of doubles (type 12).
    TiffBytes& Doubles(unsigned tag, const std::vector<double>& values);
    /// A tag that claims `count` values at byte `at` of the file.
    TiffBytes& Claim(unsigned tag, unsigned type, std::uint64_t count, std::uint64_t at);
    /// The tags of an uncompressed 8-bit grey image in one strip of `bytes` bytes at `at`.
    TiffBytes& Image(std::uint64_t width, std::uint64_t height, std::uint64_t at, std::uint64_t bytes);
    /// Offset of the next directory; 0 for none.
    TiffBytes& Next(std::uint64_t at);

    /// The file's bytes. Tags are in ascending order; a tag added again replaces the former.
    std::string Build() const;

    /// Offset of the directory.
    std::uint64_t DirectoryAt() const { return isBig_ ? 16 : 8; }

  private:
    struct Entry {
        unsigned tag;
        unsigned type;
        std::uint64_t count;
        std::string values;    ///< in the file's byte order
        bool isClaim = false;  ///< `values` is an offset
    };
    std::string Number(std::uint64_t number, unsigned size) const;
    TiffBytes& Add(Entry entry);

    const bool isBig_;
    const bool isBigEndian_;
    std::vector<Entry> entries_;
    std::uint64_t next_ = 0;
};

}  // namespace orvex::testing
