#pragma once
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <string>

#include "support/Files.h"

namespace orvex {

/// Writes point records that differ in nothing but their place. Throws LDataError.
class LasPointWriter {
  public:
    /// Makes the file, replacing one that is there. `front` is what comes before the points, `record` a whole
    /// record whose first 12 bytes each point replaces. Errors name the file `shownPath`.
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
    /// The least and the greatest of each coordinate.
    const std::array<std::int32_t, 3>& Low() const { return low_; }
    const std::array<std::int32_t, 3>& High() const { return high_; }

    /// Writes what is left, then `front` over the first bytes, and closes the file.
    void Finish(const std::string& front);

  private:
    void Flush();
    [[noreturn]] void Fail(SystemError error) const;

    std::wstring shownPath_;
    std::ofstream file_;
    std::size_t recordLength_;
    std::string records_;  ///< filled with records, so that only places are left to write
    std::size_t used_ = 0;
    std::uint64_t flushed_ = 0;
    std::array<std::int32_t, 3> low_;
    std::array<std::int32_t, 3> high_;
};

}  // namespace orvex
