#include "host/utilities/DwgCheck.h"

#include <array>
#include <cstdint>
#include <optional>

#include "support/ByteReader.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint16_t kSeed = 0xC0C1;

constexpr std::array<std::uint16_t, 256> kChecksums = [] {
    std::array<std::uint16_t, 256> table{};
    for (unsigned i = 0; i < table.size(); ++i) {
        unsigned value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1U) ^ ((value & 1U) != 0 ? 0xA001U : 0U);
        }
        table[i] = static_cast<std::uint16_t>(value);
    }
    return table;
}();

class DwgBytes {
  public:
    explicit DwgBytes(std::span<const std::byte> bytes) : bytes_(bytes), reader_(bytes) {}

    void CheckSections() {
        constexpr std::uint64_t kCount = 21;
        constexpr std::uint64_t kRecords = 25;
        constexpr std::uint64_t kRecord = 9;  // number, offset, length
        Require(Value<std::uint32_t>(kCount) >= 3);
        const auto offset = [&](std::uint64_t section) {
            return Value<std::uint32_t>(kRecords + section * kRecord + 1);
        };
        CheckSection(offset(0));
        CheckSection(offset(1));
        CheckObjects(offset(2));
    }

  private:
    static void Require(bool holds) {
        if (!holds) {
            throw LDataError(Text(text::kCadUnreadable));
        }
    }

    template <typename T>
    T Value(std::uint64_t offset) const {
        const std::optional<T> value = reader_.TryRead<T>(offset);
        Require(value.has_value());
        return *value;
    }

    unsigned BigEndian16(std::uint64_t offset) const {
        return Value<std::uint8_t>(offset) * 256U + Value<std::uint8_t>(offset + 1);
    }

    std::uint16_t Checksum(std::uint64_t offset, std::uint64_t length) {
        // A map may name one large object many times.
        checked_ += length;
        Require(reader_.Contains(offset, length) && checked_ <= kMostTimes * bytes_.size());
        std::uint16_t sum = kSeed;
        for (const std::byte byte :
             bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length))) {
            sum = static_cast<std::uint16_t>(
                (sum >> 8U) ^ kChecksums[(sum ^ std::to_integer<std::uint16_t>(byte)) & 0xFFU]);
        }
        return sum;
    }

    /// Section of the header's variables or of the classes: a mark, its length, its content, its checksum.
    void CheckSection(std::uint64_t offset) {
        constexpr std::uint64_t kMark = 16;
        const std::uint64_t start = offset + kMark;
        const std::uint64_t length = 4 + std::uint64_t{Value<std::uint32_t>(start)};
        Require(Checksum(start, length) == Value<std::uint16_t>(start + length));
    }

    /// A number of seven bits a byte, the lowest first. `isSigned`: the last byte has a sign.
    std::int64_t Modular(std::uint64_t& at, bool isSigned) const {
        constexpr int kMostBytes = 5;
        std::int64_t value = 0;
        for (int i = 0; i < kMostBytes; ++i) {
            const unsigned byte = Value<std::uint8_t>(at++);
            const bool isLast = (byte & 0x80U) == 0;
            const bool isNegative = isLast && isSigned && (byte & 0x40U) != 0;
            value |= static_cast<std::int64_t>(byte & (isLast && isSigned ? 0x3FU : 0x7FU)) << (7 * i);
            if (isLast) {
                return isNegative ? -value : value;
            }
        }
        Require(false);
        return 0;
    }

    void CheckObject(std::uint64_t offset) {
        const std::uint64_t first = Value<std::uint16_t>(offset);
        const bool isLong = (first & 0x8000U) != 0;
        const std::uint64_t high = isLong ? Value<std::uint16_t>(offset + 2) : 0;
        const std::uint64_t length = (isLong ? 4 : 2) + ((first & 0x7FFFU) | high << 15U);
        Require(Checksum(offset, length) == Value<std::uint16_t>(offset + length));
    }

    /// The map from handles to the objects' offsets: parts with the differences from one to the next. A part
    /// of its length alone is the last.
    void CheckObjects(std::uint64_t offset) {
        constexpr std::uint64_t kLength = 2;
        for (;;) {
            const std::uint64_t length = BigEndian16(offset);
            Require(length >= kLength && Checksum(offset, length) == BigEndian16(offset + length));
            if (length == kLength) {
                return;
            }
            std::int64_t object = 0;
            for (std::uint64_t at = offset + kLength; at < offset + length;) {
                Modular(at, false);
                object += Modular(at, true);
                Require(object >= 0);
                CheckObject(static_cast<std::uint64_t>(object));
            }
            offset += length + 2;
        }
    }

    static constexpr std::uint64_t kMostTimes = 4;

    const std::span<const std::byte> bytes_;
    const ByteReader reader_;
    std::uint64_t checked_ = 0;  ///< bytes
};

}  // namespace

void CheckDwg(const std::wstring& path) {
    MappedFile file;
    std::uint64_t size = 0;
    MappedView view;
    if (file.Open(path, true) != 0 || file.Size(size) != 0 || file.CreateMapping() != 0 ||
        file.Map(0, size, false, view) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    DwgBytes(view.Bytes()).CheckSections();
}

}  // namespace orvex
