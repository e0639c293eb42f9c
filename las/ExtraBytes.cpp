#include "las/ExtraBytes.h"

#include <algorithm>
#include <array>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kDataTypeAt = 2;
constexpr std::uint64_t kOptionsAt = 3;
constexpr std::uint64_t kNameAt = 4;
constexpr std::uint64_t kNameLength = 32;
constexpr std::size_t kMessageLimit = 255;

// By data type; type 0 takes as many bytes as its options say.
constexpr std::array<std::uint8_t, 11> kSizes{0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8};

std::uint8_t SizeOf(std::uint8_t dataType, std::uint8_t options) {
    if (dataType >= kSizes.size()) {
        throw LDataError(FormatText(L"GetExtraByteOffsets: '%i' is not a valid extra bytes data_type value.",
                                    {static_cast<int>(dataType)}, kMessageLimit));
    }
    return dataType == 0 ? options : kSizes[dataType];
}

}  // namespace

void ExtraBytes::GetExtraByteOffsets(std::span<const std::byte> descriptors, std::size_t mostAttributes) {
    const ByteReader reader(descriptors);
    const std::size_t count = std::min(descriptors.size() / kDescriptorSize, mostAttributes);
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t start = i * kDescriptorSize;
        const auto dataType = reader.Read<std::uint8_t>(start + kDataTypeAt);
        const std::uint8_t size = SizeOf(dataType, reader.Read<std::uint8_t>(start + kOptionsAt));
        attributes_.push_back(
            {FromUtf8(reader.FixedText(start + kNameAt, kNameLength)), offset, size, dataType});
        offset += size;
    }
}

const ExtraBytesAttribute* ExtraBytes::Find(const std::wstring& name) const {
    const auto found = std::ranges::find(attributes_, name, &ExtraBytesAttribute::name);
    return found == attributes_.end() ? nullptr : &*found;
}

}  // namespace orvex
