#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// Column of an attribute table.
struct TestField {
    std::string name;
    char type = 'C';
    std::uint8_t width = 10;
    std::uint8_t decimals = 0;
};

/// A shapefile of points with its sidecars, as bytes.
struct TestShapefile {
    std::int32_t type = 1;  ///< in the header and of each shape
    std::vector<std::array<double, 2>> points{{7, 50}, {8, 51}, {9, 52}};
    std::vector<TestField> fields{{"NAME"}, {"HEIGHT", 'N', 12, 3}, {"NUMBER", 'N', 9, 0}};
    std::uint8_t languageDriver = 0;
    std::array<double, 4> extent{7, 50, 9, 52};

    std::string Shp() const;
    std::string Shx() const;
    std::string Dbf() const;
    /// Writes all three as `name` and the extensions; returns the path of the .shp file.
    std::wstring Write(const TemporaryFolder& folder, const std::wstring& name) const;
};

}  // namespace orvex::testing
