#pragma once
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

/// Where a run of the command writes and how it is stopped.
struct InspectStreams {
    std::ostream& out;
    std::ostream& err;
    bool showProgress = false;                          ///< count the files on `err` while they are read
    std::function<bool()> stop = [] { return false; };  ///< true: leave as soon as the files at hand are done
};

/// Exit codes of the command.
inline constexpr int kInspectOk = 0;
inline constexpr int kInspectPathMissing = 1;
inline constexpr int kInspectUsage = 2;
inline constexpr int kInspectFailed = 3;  ///< the output could not be written, or something unforeseen
inline constexpr int kInspectStopped = 130;

/// The command `orvex-inspect` with its arguments (without the program's name).
int RunInspectCommand(const std::vector<std::wstring>& arguments, const InspectStreams& streams);

}  // namespace orvex
