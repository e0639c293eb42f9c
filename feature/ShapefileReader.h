#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "feature/AttributeTable.h"
#include "support/Finding.h"

namespace orvex {

/// Content of a shapefile without its shapes and records.
struct ShapefileContent {
    std::uint64_t shapeCount = 0;
    std::int32_t shapeType = 0;      ///< code of the file format: 0 null, 1 point, 3 polyline ...
    std::array<double, 4> extent{};  ///< minimum X, minimum Y, maximum X, maximum Y as the header states them
    std::vector<AttributeField> fields;
    std::vector<Finding> findings;  ///< about the file, its index and its attribute table, in this order
};

/// Reads the headers of a shapefile, of its index (.shx) and of its attribute table (.dbf), each in any
/// letter case. The index is compared with the shapes it points to in some places; where it is missing or
/// contradicts them, the shapes are counted in the file itself, as far as 32 MiB of reading go. What a
/// sidecar lacks is a finding: the shapes can be loaded without it. Throws LDataError with the cause in plain
/// words when the file cannot be opened or is no shapefile. Safe from any thread; nothing is written.
ShapefileContent ReadShapefile(const std::wstring& path);

}  // namespace orvex
