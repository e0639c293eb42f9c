#include "raster/page/DemPointFormats.h"

#include <array>

namespace orvex {

namespace {

// No version has the value 2: these are the version codes of the LAS reader, where it is LAS 2.0.
constexpr std::array<DemLasVersion, 5> kVersions{
    {{L"1.0", 0}, {L"1.1", 1}, {L"1.2", 3}, {L"1.3", 4}, {L"1.4", 5}}};

constexpr std::array<std::int32_t, 9> kFormats{0, 1, 2, 3, 4, 5, 6, 7, 8};

}  // namespace

std::span<const DemLasVersion> DemLasVersions() {
    return kVersions;
}

std::span<const std::int32_t> DemPointFormats(std::int32_t lasVersion) {
    const std::span<const std::int32_t> all(kFormats);
    if (lasVersion >= 5) {
        return all;
    }
    if (lasVersion >= 4) {
        return all.first(6);
    }
    return all.first(lasVersion >= 3 ? 4 : 2);
}

}  // namespace orvex
