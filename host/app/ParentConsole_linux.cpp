#include "host/app/ParentConsole.h"

namespace orvex {

// Every program has the streams of the one that started it.
ParentConsole::ParentConsole() = default;
ParentConsole::~ParentConsole() = default;

}  // namespace orvex
