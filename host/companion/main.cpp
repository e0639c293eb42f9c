// orvex-companion: builds, checks and draws the QVR companions of LAS files, without a window.
#include <functional>
#include <iostream>

#include "host/companion/CompanionCommand.h"
#include "host/terminal/Terminal.h"
#include "support/Environment.h"
#include "support/LDataError.h"
#include "support/Text.h"

int main(int argc, char** argv) {
    const std::function<bool()> stop = orvex::StopOnSignals();
    std::ios::sync_with_stdio(false);
    try {
        const orvex::TerminalSession terminal;
        return orvex::RunCompanionCommand(orvex::ProgramArguments(argc, argv),
                                          {std::cout, std::cerr, terminal.CanRewriteLines(), stop});
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return orvex::kCompanionFailed;
    }
}
