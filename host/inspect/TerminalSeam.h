#pragma once

namespace orvex {

/// True when the standard error stream is a terminal, where a line that rewrites itself makes sense.
bool StandardErrorIsTerminal();

}  // namespace orvex
