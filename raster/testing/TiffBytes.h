#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace orvex::testing {

/// A TIFF written byte by byte, as broken as a test wants it: header, one directory or several, then the
/// values that do not fit into their tags.
class TiffBytes {
  public:
    enum class Format { Classic, Big };
    enum class Order { Little, Big };

    explicit TiffBytes(Format format = Format::Classic, Order order = Order::Little)
        : isBig_(format == Format::Big), isBigEndian_(order == Order::Big) {}

    /// A tag of whole numbers: type 3 has two bytes each, 4 four, 16 eight, 1 one.
    TiffBytes& Tag(unsigned tag, unsigned type, const std::vector<std::uint64_t>& values);
    /// A tag of type 12.
    TiffBytes& Doubles(unsigned tag, const std::vector<double>& values);
    /// A tag that says it has `count` values at byte `at` of the file.
    TiffBytes& Claim(unsigned tag, unsigned type, std::uint64_t count, std::uint64_t at);
    /// What every image has: an uncompressed one of bytes in one strip, whose bytes lie at `at`.
    TiffBytes& Image(std::uint64_t width, std::uint64_t height, std::uint64_t at, std::uint64_t bytes);
    /// Byte of the directory that follows this one; 0 for none.
    TiffBytes& Next(std::uint64_t at);

    /// The file. Tags in ascending order, a later one in the place of an earlier one of the same number.
    std::string Build() const;

    /// Where the directory begins.
    std::uint64_t DirectoryAt() const { return isBig_ ? 16 : 8; }

  private:
    struct Entry {
        unsigned tag;
        unsigned type;
        std::uint64_t count;
        std::string values;    ///< in the order of the file
        bool isClaim = false;  ///< `values` is the offset
    };
    std::string Number(std::uint64_t number, unsigned size) const;
    TiffBytes& Add(Entry entry);

    const bool isBig_;
    const bool isBigEndian_;
    std::vector<Entry> entries_;
    std::uint64_t next_ = 0;
};

}  // namespace orvex::testing
