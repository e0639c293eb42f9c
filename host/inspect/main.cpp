// orvex-inspect: prints what the dialog would show of files, without a window.
#include <QCoreApplication>
#include <functional>
#include <iostream>
#include <optional>
#include <span>

#include "host/inspect/InspectCommand.h"
#include "host/inspect/InspectOptions.h"
#include "host/terminal/Terminal.h"
#include "support/Environment.h"
#include "support/LDataError.h"
#include "support/Text.h"

int main(int argc, char** argv) {
    const std::function<bool()> stop = orvex::StopOnSignals();
    std::ios::sync_with_stdio(false);
    try {
        const orvex::TerminalSession terminal;
        const std::vector<std::wstring> arguments = orvex::ProgramArguments(argc, argv);
        orvex::ChooseLanguage(orvex::InspectLanguage(arguments));
        std::optional<QCoreApplication> application;
        if (orvex::NeedsNetwork(arguments)) {
            application.emplace(argc, argv);
        }
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
