#include "host/utilities/testing/LazTableEncoder.h"

#include <bit>

#include "host/utilities/LazTableModels.h"

namespace orvex::testing {
namespace {

using namespace laz_table;

class Encoder {
  public:
    void Bit(BitModel& model, bool bit) {
        const std::uint32_t zero = model.zeroProbability * (length_ >> BitModel::kShift);
        Narrow(bit ? zero : 0, bit ? length_ - zero : zero);
        model.Count(bit);
    }
    void Symbol(SymbolModel& model, std::size_t symbol) {
        const std::uint32_t step = length_ >> SymbolModel::kShift;
        const std::uint32_t start = model.Start(symbol) * step;
        const std::uint32_t end = symbol == model.Last() ? length_ : model.Start(symbol + 1) * step;
        Narrow(start, end - start);
        model.Count(symbol);
    }
    void Bits(std::uint32_t count, std::uint32_t bits) {
        if (count > 19) {
            Bits(16, bits & 0xFFFFU);
            Bits(count - 16, bits >> 16U);
            return;
        }
        Narrow(bits * (length_ >> count), length_ >> count);
    }
    std::string Finish() {
        Narrow(kLeastLength / 2, 1U << 15U);
        return bytes_ + std::string(8, '\0');
    }

  private:
    void Narrow(std::uint32_t start, std::uint32_t length) {
        base_ += start;
        for (std::size_t i = bytes_.size(); base_ < start && i-- > 0;) {
            bytes_[i] = static_cast<char>(bytes_[i] + 1);
            if (bytes_[i] != 0) {
                break;
            }
        }
        length_ = length;
        while (length_ < kLeastLength) {
            bytes_ += static_cast<char>(base_ >> 24U);
            base_ <<= 8U;
            length_ <<= 8U;
        }
    }

    std::string bytes_;
    std::uint32_t base_ = 0;
    std::uint32_t length_ = ~std::uint32_t{0};
};

void EncodeDifference(Encoder& encoder, DifferenceModels& models, std::size_t column, std::int32_t value) {
    const auto size = static_cast<std::uint32_t>(value <= 0 ? -value : value - 1);
    const auto bits = static_cast<std::uint32_t>(std::bit_width(size));
    encoder.Symbol(models.columns[column], bits);
    if (bits == 0) {
        encoder.Bit(models.bit, value != 0);
        return;
    }
    const auto place = static_cast<std::uint32_t>(value < 0 ? value + (1 << bits) - 1 : value - 1);
    const std::uint32_t rest =
        bits > DifferenceModels::kModelledBits ? bits - DifferenceModels::kModelledBits : 0;
    encoder.Symbol(models.places[bits - 1], place >> rest);
    if (rest > 0) {
        encoder.Bits(rest, place & ((1U << rest) - 1));
    }
}

}  // namespace

std::string EncodeLazTable(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& chunks) {
    Encoder encoder;
    DifferenceModels models;
    std::pair<std::uint32_t, std::uint32_t> last;
    for (const auto& chunk : chunks) {
        EncodeDifference(encoder, models, 0, static_cast<std::int32_t>(chunk.first - last.first));
        EncodeDifference(encoder, models, 1, static_cast<std::int32_t>(chunk.second - last.second));
        last = chunk;
    }
    return encoder.Finish();
}

}  // namespace orvex::testing
