#pragma once
// What the benchmarks need of the system.
#include <cstdint>
#include <string>

namespace orvex::bench {

/// Opens a file, asks for its size, reads its header and its VLRs and closes it, with nothing around the
/// system's calls. Returns the bytes read.
std::uint64_t ReadBarely(const std::string& path);

/// Bytes that the program holds of the heap.
std::uint64_t HeapInUse();

/// Copies a file with the system's own means: the command `cp`, where there is one.
bool CopyWithSystem(const std::wstring& from, const std::wstring& to);

}  // namespace orvex::bench
