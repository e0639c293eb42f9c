#pragma once
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

namespace orvex {

/// Streams of a run, and the way to stop it.
struct InspectStreams {
    std::ostream& out;
    std::ostream& err;
    bool isTerminal = false;  ///< a line of `err` can be rewritten: progress is shown in one
    /// Polled on all threads; true ends the run after the current files.
    std::function<bool()> stop = [] { return false; };
    /// Reads from standard input into a buffer; returns the number of bytes, 0 at the end of the input or if
    /// the run is to stop.
    std::function<std::size_t(std::span<char> buffer)> read = [](std::span<char>) { return 0; };
};

/// Exit codes of the command.
inline constexpr int kInspectOk = 0;
/// Of a path, or of a folder below one, or of a URL; or it cannot be read; or a file has what --fail-on
/// names.
inline constexpr int kInspectPathMissing = 1;
inline constexpr int kInspectUsage = 2;
inline constexpr int kInspectFailed = 3;  ///< the output could not be written, or something unforeseen
inline constexpr int kInspectStopped = 130;

/// True if an argument is a URL, or URLs may be on standard input: the process must have a QCoreApplication
/// then.
bool NeedsNetwork(const std::vector<std::wstring>& arguments);

/// Runs the command `orvex-inspect` with its arguments (without the program's name); returns the exit code.
int RunInspectCommand(const std::vector<std::wstring>& arguments, const InspectStreams& streams);

}  // namespace orvex
