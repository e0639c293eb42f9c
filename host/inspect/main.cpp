// orvex-inspect: prints what the dialog would show of files, without a window.
#include <QCoreApplication>
#include <atomic>
#include <csignal>
#include <iostream>
#include <optional>
#include <span>

#include "host/inspect/InspectCommand.h"
#include "host/inspect/InspectOptions.h"
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
    std::signal(SIGTERM, OnInterrupt);
    std::ios::sync_with_stdio(false);
    try {
        const orvex::TerminalSession terminal;
        const std::vector<std::wstring> arguments = orvex::ProgramArguments(argc, argv);
        orvex::ChooseLanguage(orvex::InspectLanguage(arguments));
        std::optional<QCoreApplication> application;
        if (orvex::NeedsNetwork(arguments)) {
            application.emplace(argc, argv);
        }
        const auto stop = [] { return interrupted.load(); };
        const auto read = [&stop](std::span<char> buffer) {
            return orvex::TerminalSession::Read(buffer, stop);
        };
        return orvex::RunInspectCommand(arguments,
                                        {std::cout, std::cerr, terminal.CanRewriteLines(), stop, read});
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return orvex::kInspectFailed;
    }
}
