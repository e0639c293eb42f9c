#include <io.h>

#include "host/inspect/TerminalSeam.h"

namespace orvex {

bool StandardErrorIsTerminal() {
    constexpr int kStandardError = 2;
    return _isatty(kStandardError) != 0;
}

}  // namespace orvex
