#pragma once
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

/// Output streams of a run, and the way to stop it.
struct InspectStreams {
    std::ostream& out;
    std::ostream& err;
    bool showProgress =
        false;  ///< `err` is a terminal that a line can be rewritten on: count the files there
    std::function<bool()> stop = [] {
        return false;
    };  ///< polled on all threads; true ends the run after the current files
};

/// Exit codes of the command.
inline constexpr int kInspectOk = 0;
/// Of a path, or of a folder below one, or of a URL; or it cannot be read.
inline constexpr int kInspectPathMissing = 1;
inline constexpr int kInspectUsage = 2;
inline constexpr int kInspectFailed = 3;  ///< the output could not be written, or something unforeseen
inline constexpr int kInspectStopped = 130;

/// True if an argument is a URL: the process must have a QCoreApplication then.
bool NeedsNetwork(const std::vector<std::wstring>& arguments);

/// Runs the command `orvex-inspect` with its arguments (without the program's name); returns the exit code.
int RunInspectCommand(const std::vector<std::wstring>& arguments, const InspectStreams& streams);

}  // namespace orvex
