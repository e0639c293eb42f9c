#pragma once
#include <cstdint>
#include <span>

namespace orvex {

/// One LAS version that converted files can have.
struct DemLasVersion {
    const wchar_t* name;  ///< "1.4"
    std::int32_t value;   ///< what the host is told: 0, 1, 3, 4 or 5
};

/// The versions offered, in the order of the list; the last one is chosen at first.
std::span<const DemLasVersion> DemLasVersions();

/// The point data record formats offered for a version (by its value), ascending; 0 is chosen at first.
std::span<const std::int32_t> DemPointFormats(std::int32_t lasVersion);

}  // namespace orvex
