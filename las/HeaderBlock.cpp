#include "las/HeaderBlock.h"

#include <algorithm>

namespace orvex {

HeaderBlock::Outcome HeaderBlock::Copy(const ReadBytes& readBytes) {
    copy_ = std::make_unique<std::byte[]>(LasHeader::kSize);
    const std::span<std::byte> block(copy_.get(), LasHeader::kSize);
    constexpr std::size_t kWaveformBytes = LasHeader::kWaveformSize - LasHeader::kLegacySize;
    std::size_t read = 0;
    if (readBytes(0, block.first(LasHeader::kLegacySize), read) != 0) {
        return Outcome::Failed;
    }
    if (read < LasHeader::kLegacySize) {
        return Outcome::TooShort;
    }
    const std::size_t headerSize = Header().HeaderSize();
    if (headerSize > LasHeader::kLegacySize) {
        const auto waveform = block.subspan(LasHeader::kLegacySize, kWaveformBytes);
        if (readBytes(LasHeader::kLegacySize, waveform, read) != 0 || read < kWaveformBytes) {
            std::ranges::fill(waveform, std::byte{0});
        }
    }
    if (headerSize > LasHeader::kWaveformSize) {
        const std::size_t length = std::min(headerSize, LasHeader::kSize) - LasHeader::kWaveformSize;
        // What a truncated file lacks stays zero.
        if (readBytes(LasHeader::kWaveformSize, block.subspan(LasHeader::kWaveformSize, length), read) != 0) {
            return Outcome::Failed;
        }
    }
    return Outcome::Ready;
}

HeaderBlock::Outcome HeaderBlock::Map(const MappedFile& file) {
    for (const std::size_t length : {LasHeader::kSize, LasHeader::kLegacySize}) {
        if (file.Map(0, length, true, view_) == 0) {
            return Outcome::Ready;
        }
    }
    return Outcome::TooShort;
}

LasHeader HeaderBlock::Header() const {
    return LasHeader(view_ ? std::span<const std::byte>(view_.Bytes())
                           : std::span<const std::byte>(copy_.get(), copy_ ? LasHeader::kSize : 0));
}

}  // namespace orvex
