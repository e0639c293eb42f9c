#include "host/utilities/LazChunks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "host/utilities/LazTableModels.h"
#include "support/ByteReader.h"
#include "support/MappedFile.h"

namespace orvex {
namespace {

using namespace laz_table;

/// Decodes bits and symbols. Behind the last byte, zeros follow.
class Decoder {
  public:
    explicit Decoder(std::span<const std::byte> bytes) : bytes_(bytes) {
        for (int i = 0; i < 4; ++i) {
            value_ = (value_ << 8U) | NextByte();
        }
    }

    bool Bit(BitModel& model) {
        const std::uint32_t zero = model.zeroProbability * (length_ >> BitModel::kShift);
        const bool bit = value_ >= zero;
        Narrow(bit ? zero : 0, bit ? length_ - zero : zero);
        model.Count(bit);
        return bit;
    }

    std::uint32_t Symbol(SymbolModel& model) {
        const std::uint32_t step = length_ >> SymbolModel::kShift;
        const std::size_t symbol = model.Find(value_ / step);
        const std::uint32_t start = model.Start(symbol) * step;
        const std::uint32_t end = symbol == model.Last() ? length_ : model.Start(symbol + 1) * step;
        Narrow(start, end - start);
        model.Count(symbol);
        return static_cast<std::uint32_t>(symbol);
    }

    /// A number of bits that are all equally probable.
    std::uint32_t Bits(std::uint32_t count) {
        constexpr std::uint32_t kMostAtOnce = 19, kHalf = 16;
        if (count > kMostAtOnce) {
            const std::uint32_t low = Bits(kHalf);
            return (Bits(count - kHalf) << kHalf) | low;
        }
        const std::uint32_t step = length_ >> count;
        const std::uint32_t bits = value_ / step;
        Narrow(bits * step, step);
        return bits;
    }

  private:
    std::uint32_t NextByte() {
        return place_ < bytes_.size() ? std::to_integer<std::uint32_t>(bytes_[place_++]) : 0;
    }
    void Narrow(std::uint32_t start, std::uint32_t length) {
        value_ -= start;
        length_ = length;
        while (length_ < kLeastLength) {
            value_ = (value_ << 8U) | NextByte();
            length_ <<= 8U;
        }
    }

    std::span<const std::byte> bytes_;
    std::size_t place_ = 0;
    std::uint32_t value_ = 0;
    std::uint32_t length_ = ~std::uint32_t{0};
};

/// Decodes the differences between the numbers of a column of the table.
class Differences {
  public:
    std::uint32_t Next(Decoder& decoder, std::size_t column) {
        const std::uint32_t bits = decoder.Symbol(models_.columns[column]);
        if (bits == 0) {
            return decoder.Bit(models_.bit) ? 1 : 0;
        }
        if (bits == DifferenceModels::kBits) {
            return 1U << (DifferenceModels::kBits - 1);
        }
        std::uint32_t place = decoder.Symbol(models_.places[bits - 1]);
        if (bits > DifferenceModels::kModelledBits) {
            const std::uint32_t rest = bits - DifferenceModels::kModelledBits;
            place = (place << rest) | decoder.Bits(rest);
        }
        // The upper half are the positive numbers, from 1 + 2^(k-1); the lower half the negative ones.
        return place >= 1U << (bits - 1) ? place + 1 : place - ((1U << bits) - 1);
    }

  private:
    DifferenceModels models_;
};

/// Sizes of chunks in points and bytes, one after the other; both are at least 1.
class Sizes {
  public:
    Sizes(std::span<const std::byte> bytes, std::uint32_t chunkSize)
        : decoder_(bytes), chunkSize_(chunkSize) {}

    LazChunk After(const LazChunk& chunk) {
        if (chunkSize_ == 0) {
            points_ += differences_.Next(decoder_, 0);
        }
        bytes_ += differences_.Next(decoder_, 1);
        return {chunk.first + chunk.count, chunkSize_ == 0 ? points_ : chunkSize_, chunk.end + bytes_};
    }

  private:
    Decoder decoder_;
    Differences differences_;
    std::uint32_t chunkSize_;
    std::uint32_t points_ = 0;
    std::uint32_t bytes_ = 0;
};

}  // namespace

std::vector<LazChunk> ReadLazChunks(const std::wstring& path, const LazChunkTable& table,
                                    std::uint64_t points) {
    constexpr std::uint64_t kHeadSize = 8;
    // Bytes of a chunk in the table, and its own: it starts with a point that is not compressed.
    constexpr std::uint64_t kMostBytesPerEntry = 16, kLeastBytesPerChunk = 20;
    MappedFile file;
    std::uint64_t size = 0;
    if (table.place <= table.start || file.Open(path, true) != 0 || file.Size(size) != 0 ||
        table.place >= size) {
        return {};
    }
    const std::vector<std::byte> head = ReadPart(file, table.place, kHeadSize);
    const std::uint64_t number = ByteReader(head).Read<std::uint32_t>(4);
    if (number > std::min(points, (table.place - table.start) / kLeastBytesPerChunk)) {
        return {};
    }
    const std::vector<std::byte> bytes = ReadPart(
        file, table.place + kHeadSize, std::min(size - table.place, (number + 1) * kMostBytesPerEntry));
    Sizes sizes(bytes, table.chunkSize);
    std::vector<LazChunk> chunks;
    LazChunk chunk{0, 0, table.start};
    for (std::uint64_t i = 0; i < number; ++i) {
        const LazChunk next = sizes.After(chunk);
        if (next.count == 0 || next.end <= chunk.end || next.end > table.place || next.first >= points) {
            return {};
        }
        chunks.push_back(chunk = next);
    }
    // Only the last chunk of a file with chunks of one size may be shorter.
    const std::uint64_t listed = chunk.first + chunk.count;
    if (listed < points || (table.chunkSize == 0 && listed > points)) {
        return {};
    }
    if (!chunks.empty()) {
        chunks.back().count = points - chunks.back().first;
    }
    return chunks;
}

}  // namespace orvex
