#pragma once
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

/// Output streams of a run, and the way to stop it.
struct CompanionStreams {
    std::ostream& out;
    std::ostream& err;
    bool showProgress = false;  ///< `err` is a terminal that a line can be rewritten on
    std::function<bool()> stop = [] { return false; };
};

/// Exit codes of the command.
inline constexpr int kCompanionOk = 0;
inline constexpr int kCompanionFailed = 1;  ///< a file failed; the others were worked on
inline constexpr int kCompanionUsageError = 2;
inline constexpr int kCompanionInterrupted = 130;

/// Runs the command `orvex-companion` with its arguments (without the program's name); returns the exit code.
int RunCompanionCommand(const std::vector<std::wstring>& arguments, const CompanionStreams& streams);

}  // namespace orvex
