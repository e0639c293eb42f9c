#include <poll.h>
#include <unistd.h>

#include <cstdlib>

#include "host/terminal/Terminal.h"
#include "support/Text.h"

namespace orvex {

struct TerminalSession::State {};

TerminalSession::TerminalSession() = default;
TerminalSession::~TerminalSession() = default;

// A signal handler does not end a read that is restarted, so the input is waited for in short pieces.
std::size_t TerminalSession::Read(std::span<char> buffer, const std::function<bool()>& stop) {
    constexpr int kWaitMs = 50;
    while (!stop()) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, kWaitMs) > 0) {
            const ssize_t size = read(STDIN_FILENO, buffer.data(), buffer.size());
            return size > 0 ? static_cast<std::size_t>(size) : 0;
        }
    }
    return 0;
}

bool TerminalSession::CanRewriteLines() const {
    return isatty(STDERR_FILENO) == 1;
}

void ChooseLanguage(const std::wstring& language) {
    setenv("ORVEX_LANGUAGE", ToUtf8(language).c_str(), 1);
}

}  // namespace orvex
