#include <unistd.h>

#include "host/inspect/TerminalSeam.h"

namespace orvex {

bool StandardErrorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace orvex
