#pragma once
// The attributes that a file's point records carry beyond their format.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvex {

/// One attribute. Offset and size are bytes; the offset counts from the first extra byte of a point record.
struct ExtraBytesAttribute {
    std::wstring name;
    std::uint64_t offset = 0;
    std::uint8_t size = 0;
    std::uint8_t dataType = 0;
};

/// The attributes in descriptor order. A file has a handful of them and a list has thousands of files: names
/// are searched one by one rather than kept twice.
class ExtraBytes {
  public:
    /// Size of a descriptor (table 24 of the LAS 1.4 format).
    static constexpr std::size_t kDescriptorSize = 192;
    /// No point record has room for more attributes.
    static constexpr std::size_t kMostAttributes = 65535;

    /// Adds the attributes of a record's data, the first at offset 0; at most `mostAttributes`; a remainder
    /// that is no whole descriptor is ignored. Throws LDataError for the data types 11 and above.
    void GetExtraByteOffsets(std::span<const std::byte> descriptors,
                             std::size_t mostAttributes = kMostAttributes);

    const std::vector<ExtraBytesAttribute>& Attributes() const { return attributes_; }
    /// The first attribute of a name; null for none.
    const ExtraBytesAttribute* Find(const std::wstring& name) const;

  private:
    std::vector<ExtraBytesAttribute> attributes_;
};

}  // namespace orvex
