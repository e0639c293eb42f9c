#pragma once
// The table of chunks of a LAZ file is coded with adaptive models of an arithmetic coder, and the codec's
// library has no function that tells what the table holds. All numbers here are the coder's own: with any
// other, other values are read.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvex::laz_table {

/// The coder's interval is widened by a byte as soon as it is shorter.
inline constexpr std::uint32_t kLeastLength = 1U << 24U;
inline constexpr std::uint32_t kUnit = 1U << 31U;

/// Probability of a bit, learnt from those before it.
struct BitModel {
    static constexpr std::uint32_t kShift = 13;
    static constexpr std::uint32_t kLongestCycle = 64;

    std::uint32_t zeroProbability = 1U << (kShift - 1);
    std::uint32_t zeros = 1;
    std::uint32_t bits = 2;
    std::uint32_t cycle = 4;
    std::uint32_t untilUpdate = 4;

    void Count(bool bit) {
        zeros += bit ? 0 : 1;
        if (--untilUpdate > 0) {
            return;
        }
        bits += cycle;
        if (bits > 1U << kShift) {
            bits = (bits + 1) / 2;
            zeros = (zeros + 1) / 2;
            bits += zeros == bits ? 1 : 0;
        }
        zeroProbability = (zeros * (kUnit / bits)) >> (31 - kShift);
        cycle = std::min(5 * cycle / 4, kLongestCycle);
        untilUpdate = cycle;
    }
};

/// Probabilities of symbols, learnt from those before.
class SymbolModel {
  public:
    static constexpr std::uint32_t kShift = 15;

    explicit SymbolModel(std::uint32_t symbols)
        : counts_(symbols, 1), starts_(symbols), total_(0), cycle_(symbols) {
        Update();
        cycle_ = untilUpdate_ = (symbols + 6) / 2;
    }

    std::size_t Last() const { return counts_.size() - 1; }
    /// Start of a symbol's range on the scale.
    std::uint32_t Start(std::size_t symbol) const { return starts_[symbol]; }
    /// The symbol whose range holds a value.
    std::size_t Find(std::uint32_t value) const {
        return static_cast<std::size_t>(std::ranges::upper_bound(starts_, value) - starts_.begin()) - 1;
    }
    void Count(std::size_t symbol) {
        ++counts_[symbol];
        if (--untilUpdate_ == 0) {
            Update();
        }
    }

  private:
    void Update() {
        total_ += cycle_;
        if (total_ > 1U << kShift) {
            total_ = 0;
            for (std::uint32_t& count : counts_) {
                count = (count + 1) / 2;
                total_ += count;
            }
        }
        const std::uint32_t scale = kUnit / total_;
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            starts_[i] = (scale * sum) >> (31 - kShift);
            sum += counts_[i];
        }
        cycle_ = std::min(5 * cycle_ / 4, (static_cast<std::uint32_t>(counts_.size()) + 6) * 8);
        untilUpdate_ = cycle_;
    }

    std::vector<std::uint32_t> counts_;
    std::vector<std::uint32_t> starts_;
    std::uint32_t total_;
    std::uint32_t cycle_;
    std::uint32_t untilUpdate_ = 0;
};

/// Models of the differences between successive numbers of a column. A difference is coded as its number of
/// bits and its place among the numbers of so many bits, of which the first kModelledBits have a model. The
/// models of the places are those of both columns.
struct DifferenceModels {
    static constexpr std::uint32_t kBits = 32, kModelledBits = 8;

    DifferenceModels() {
        for (std::uint32_t bits = 1; bits <= kBits; ++bits) {
            places.emplace_back(1U << std::min(bits, kModelledBits));
        }
    }

    std::array<SymbolModel, 2> columns{SymbolModel(kBits + 1), SymbolModel(kBits + 1)};
    BitModel bit;
    std::vector<SymbolModel> places;
};

}  // namespace orvex::laz_table
