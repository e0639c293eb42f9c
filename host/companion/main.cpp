// orvex-companion: builds, checks and draws the QVR companions of LAS files, without a window.
#include <atomic>
#include <csignal>
#include <iostream>

#include "host/companion/CompanionCommand.h"
#include "host/terminal/Terminal.h"
#include "support/Environment.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace {

// Read on all threads.
std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void OnInterrupt(int) {
    interrupted = true;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, OnInterrupt);
    std::ios::sync_with_stdio(false);
    try {
        const orvex::TerminalSession terminal;
        return orvex::RunCompanionCommand(
            orvex::ProgramArguments(argc, argv),
            {std::cout, std::cerr, terminal.CanRewriteLines(), [] { return interrupted.load(); }});
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return orvex::kCompanionFailed;
    }
}
