#pragma once
// What the command line programs share: the standard streams, a line of progress, options with a value.
#include <chrono>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvex {

/// Prepares the standard output and error streams for UTF-8 bytes, on a terminal or in a file, until
/// destroyed.
class TerminalSession {
  public:
    TerminalSession();
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// Reads from standard input; returns the number of bytes, 0 at its end, when reading fails, or once
    /// `stop`, which is polled, returns true. On Windows only the end of the input, and Ctrl+C on a console,
    /// end the wait for it.
    static std::size_t Read(std::span<char> buffer, const std::function<bool()>& stop);

    /// True if the error stream is a terminal that knows the escape sequences for rewriting a line.
    bool CanRewriteLines() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Language of the texts ("en"), whatever the user's. To be called before the first text is asked for and
/// before there are other threads.
void ChooseLanguage(const std::wstring& language);

/// From now on Ctrl+C and SIGTERM do not end the program. Returns a function that tells, on any thread,
/// whether one of them has come.
std::function<bool()> StopOnSignals();

/// Progress line on a terminal, rewritten a few times a second and wiped at the end.
class ProgressLine {
  public:
    /// `shown`: the stream is a terminal that a line can be rewritten on.
    ProgressLine(std::ostream& err, bool shown);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// True if a line would be written now.
    bool IsDue() const;
    void Tell(const std::wstring& line);

  private:
    std::ostream& err_;
    const bool shown_;
    bool written_ = false;
    std::chrono::steady_clock::time_point next_;
};

/// A text for people as one line of UTF-8.
void WriteLine(std::ostream& out, const std::wstring& line);

/// Value of an option written "--name value" or "--name=value"; nullopt if `arguments[i]` is another option,
/// empty if the value is missing. Leaves `i` at the option's last argument.
std::optional<std::wstring> ValueOf(const std::wstring& name, const std::vector<std::wstring>& arguments,
                                    std::size_t& i);

/// Whole decimal number from `least` to `most`; nullopt for any other text.
std::optional<std::uint64_t> ParseNumber(const std::wstring& text, std::uint64_t least, std::uint64_t most);

}  // namespace orvex
