#pragma once
// What the system says of this process.
#include <cstddef>
#include <cstdint>
#include <string>

namespace orvex::testing {

/// Open files and other things that a process has in limited number.
std::size_t OpenHandles();
/// Views of a file in this process's memory.
std::size_t MappingsOf(const std::wstring& path);
/// The most memory that this process has ever had in use, in bytes.
std::uint64_t PeakMemory();

}  // namespace orvex::testing
