#pragma once
// Point clouds for tests of the companion, and the order that its definition gives them, found the slow way.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "las/companion/QvrBuilder.h"
#include "las/companion/QvrFile.h"
#include "las/testing/LasBuilder.h"
#include "las/testing/LasFiles.h"

namespace orvex::testing {

struct Cloud {
    int version = 12;
    int pointFormat = 1;
    std::size_t points = 3000;
    std::uint8_t extraBytes = 0;
    /// Coordinates of a point by its number; null for a plane with random points.
    std::function<std::array<double, 3>(std::size_t)> position = {};
    bool areAlike = false;  ///< all bytes but those of the coordinates are 0, not random
    /// Further records and lies.
    std::function<void(LasBuilder&)> change = {};

    std::string Bytes() const;
};

/// Start of the points, their records, and all behind them in a LAS file without compression.
struct CloudParts {
    explicit CloudParts(const std::string& file);

    std::string head;
    std::vector<std::string> records;
    std::string tail;
};

/// Records and their generations in the order that the definition gives; `index` says which.
struct ExpectedOrder {
    ExpectedOrder(const std::vector<std::string>& source, const QvrIndex& index);

    std::vector<std::string> records;
    std::vector<std::uint16_t> generations;
};

/// Builds the companion of a file and returns its bytes.
std::string BuiltQvr(const std::wstring& source, const QvrSettings& settings);

}  // namespace orvex::testing
