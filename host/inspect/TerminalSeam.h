#pragma once
#include <memory>

namespace orvex {

/// Makes the standard output and error streams take UTF-8 as it is, in a terminal as in a file; what was
/// changed for that is put back when destroyed.
class TerminalSession {
  public:
    TerminalSession();
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// True when the error stream is a terminal that knows escape sequences, where a line that rewrites
    /// itself makes sense.
    bool CanRewriteLines() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace orvex
