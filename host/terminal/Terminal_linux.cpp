#include <unistd.h>

#include "host/terminal/Terminal.h"

namespace orvex {

struct TerminalSession::State {};

TerminalSession::TerminalSession() = default;
TerminalSession::~TerminalSession() = default;

bool TerminalSession::CanRewriteLines() const {
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace orvex
