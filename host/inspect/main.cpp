// orvex-inspect: prints what the dialog would show of files, without a window.
#include <csignal>
#include <iostream>

#include "host/inspect/InspectCommand.h"
#include "support/Environment.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void OnInterrupt(int) {
    interrupted = 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, OnInterrupt);
    std::ios::sync_with_stdio(false);
    try {
        const orvex::TerminalSession terminal;
        return orvex::RunInspectCommand(
            orvex::ProgramArguments(argc, argv),
            {std::cout, std::cerr, terminal.CanRewriteLines(), [] { return interrupted != 0; }});
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return orvex::kInspectFailed;
    }
}
