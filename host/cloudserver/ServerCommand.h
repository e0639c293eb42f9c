#pragma once
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

/// Output streams of a run, and the way to end it.
struct ServerStreams {
    std::ostream& out;
    std::ostream& err;
    std::function<bool()> stop;  ///< asked ten times a second; true ends the server
};

inline constexpr int kServerOk = 0;
inline constexpr int kServerFailed = 1;  ///< the address, the token, the certificate or a file cannot be used
inline constexpr int kServerUsage = 2;

/// Runs the command `orvex-cloud-server` with its arguments (without the program's name) until it is told to
/// stop; returns the exit code. The token is never printed.
int RunServerCommand(const std::vector<std::wstring>& arguments, const ServerStreams& streams);

}  // namespace orvex
