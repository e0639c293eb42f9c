#pragma once
// System calls of the benchmarks.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvex::bench {

/// Opens a LAS file, gets its size, reads its header and VLRs and closes it, by bare system calls. Returns
/// the bytes read.
std::uint64_t ReadBarely(const std::string& path);

/// Bytes of the heap in use by this program.
std::uint64_t HeapInUse();

/// Bytes of the most memory that this program has had resident so far, or since ResetPeakMemory, which does
/// nothing on Windows.
std::uint64_t PeakMemory();
void ResetPeakMemory();

/// Milliseconds of processor time that this program has used on all cores. Other work on the machine adds to
/// it much less than to the time that passes.
double ProcessorTime();

/// Runs a program of the PATH with these arguments, its own name first, and without its output. Returns its
/// exit code; nullopt if there is no such program.
std::optional<int> RunProgram(const std::vector<std::string>& arguments);

/// Copies a file by the system's own means: the command `cp`, on Windows CopyFile.
bool CopyWithSystem(const std::wstring& from, const std::wstring& to);

}  // namespace orvex::bench
