#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orvex {

/// The values of a tag of the first directory of a little-endian TIFF file in memory, as they stand there;
/// none when the file has no such tag or the values lie outside of it. Only the types that keys use are known
/// (ASCII, SHORT, DOUBLE).
std::optional<std::string> FindTiffTag(std::span<const std::byte> tiff, std::uint16_t tag);

}  // namespace orvex
