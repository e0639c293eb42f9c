#pragma once
// Writing of LAS files, field by field.
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "support/Files.h"

namespace orvex {

static_assert(std::endian::native == std::endian::little, "fields are copied as they are");

/// Block of zeros that takes little-endian fields at their offsets; fields must lie inside.
class FieldBlock {
  public:
    explicit FieldBlock(std::size_t size) : bytes_(size, '\0') {}

    template <typename T>
    void Put(std::size_t offset, T value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof(T));
    }
    /// Text, truncated to the size of the field.
    void PutText(std::size_t offset, std::size_t size, std::string_view text) {
        text.copy(bytes_.data() + offset, size);
    }
    std::string Take() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

/// Header fields of a file of single returns. X, Y, Z in the arrays.
struct LasHeaderFields {
    int minorVersion = 4;  ///< LAS 1.x
    int pointFormat = 0;
    std::uint16_t recordLength = 20;   ///< bytes of a point
    std::uint16_t globalEncoding = 0;  ///< ignored where the version has none (1.0, 1.1)
    std::string systemIdentifier;      ///< at most 32 characters, as the next
    std::string generatingSoftware;
    std::uint16_t creationDay = 0;  ///< of the year, from 1
    std::uint16_t creationYear = 0;
    std::uint32_t recordCount = 0;
    std::uint32_t offsetToPoints = 0;
    std::uint64_t points = 0;  ///< below 2^32 for versions before 1.4
    std::array<double, 3> scale{1, 1, 1};
    std::array<double, 3> offset{};
    std::array<double, 3> min{};
    std::array<double, 3> max{};
};

/// Size of the header of LAS 1.x in bytes; x is 0 to 4.
std::uint16_t LasHeaderSize(int minorVersion);

std::string LasHeaderBytes(const LasHeaderFields& fields);

/// A VLR with its header. Truncates the user id to 16 and the description to 32 characters, the data to
/// 65,535 bytes.
std::string LasRecordBytes(int minorVersion, std::string_view userId, std::uint16_t recordId,
                           std::string_view description, std::string_view data);

/// Start signature of the point data, which follows the VLRs in LAS 1.0; empty for later versions.
std::string LasPointsMark(int minorVersion);

/// Writes point records that differ only in their coordinates. Members throw LDataError.
class LasPointWriter {
  public:
    /// Creates or replaces the file. `front` is everything before the points, `record` a whole record whose
    /// first 12 bytes each point replaces. Errors name the file as `shownPath`.
    LasPointWriter(const std::wstring& path, const std::wstring& shownPath, const std::string& front,
                   const std::string& record);

    void Add(const std::array<std::int32_t, 3>& place) {
        std::memcpy(records_.data() + used_, place.data(), sizeof(place));
        used_ += recordLength_;
        for (std::size_t axis = 0; axis < place.size(); ++axis) {
            low_[axis] = place[axis] < low_[axis] ? place[axis] : low_[axis];
            high_[axis] = place[axis] > high_[axis] ? place[axis] : high_[axis];
        }
        if (used_ == records_.size()) {
            Flush();
        }
    }

    std::uint64_t Points() const { return flushed_ + used_ / recordLength_; }
    /// Least and greatest X, Y and Z.
    const std::array<std::int32_t, 3>& Low() const { return low_; }
    const std::array<std::int32_t, 3>& High() const { return high_; }

    /// Writes the remaining points, overwrites the start of the file with `front`, and closes it.
    void Finish(const std::string& front);

  private:
    void Flush();
    [[noreturn]] void Fail(SystemError error) const;

    std::wstring shownPath_;
    std::ofstream file_;
    std::size_t recordLength_;
    std::string records_;  ///< prefilled with records; only coordinates are written
    std::size_t used_ = 0;
    std::uint64_t flushed_ = 0;
    std::array<std::int32_t, 3> low_;
    std::array<std::int32_t, 3> high_;
};

}  // namespace orvex
