#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Finding.h"

namespace orvex {

/// Types of attribute fields, with the codes of the host's shapefile object.
enum class AttributeType : std::int32_t { Double, Integer, String, Date, Logical, Invalid };

struct AttributeField {
    std::wstring name;
    AttributeType type = AttributeType::Invalid;
};

/// Header of the attribute table (.dbf) beside a shapefile.
struct AttributeTable {
    std::vector<AttributeField> fields;
    std::optional<std::uint64_t> recordCount;  ///< as stated; nullopt without a table that can be read
    std::vector<Finding> findings;
};

/// Reads the header of the table beside a shapefile. Names of fields are in the encoding that the .cpg file
/// beside it gives, else the table's language driver, else in UTF-8 or Windows-1252. Never throws LDataError:
/// a table that is missing or cannot be read is a finding.
AttributeTable ReadAttributeTable(const std::wstring& shapefile);

}  // namespace orvex
