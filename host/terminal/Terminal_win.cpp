#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

#include <iostream>

#include "host/terminal/Terminal.h"

namespace orvex {

struct TerminalSession::State {
    UINT outputCodePage = 0;  ///< 0: nothing to put back
    DWORD errorMode = 0;
    bool canRewriteLines = false;
};

TerminalSession::TerminalSession() : state_(std::make_unique<State>()) {
    // The writers choose their line ends; in text mode CSV's "\r\n" would become "\r\r\n".
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const UINT codePage = GetConsoleOutputCP();  // 0 without a console
    if (codePage != CP_UTF8 && SetConsoleOutputCP(CP_UTF8) != FALSE) {
        state_->outputCodePage = codePage;
    }
    const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
    state_->canRewriteLines = GetConsoleMode(error, &state_->errorMode) != FALSE &&
                              SetConsoleMode(error, state_->errorMode | ENABLE_PROCESSED_OUTPUT |
                                                        ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

TerminalSession::~TerminalSession() {
    std::cout.flush();
    std::cerr.flush();
    if (state_->canRewriteLines) {
        SetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), state_->errorMode);
    }
    if (state_->outputCodePage != 0) {
        SetConsoleOutputCP(state_->outputCodePage);
    }
}

std::size_t TerminalSession::Read(std::span<char> buffer, const std::function<bool()>& stop) {
    DWORD size = 0;
    const bool isRead = !stop() && ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer.data(),
                                            static_cast<DWORD>(buffer.size()), &size, nullptr) != FALSE;
    return isRead && !stop() ? size : 0;
}

bool TerminalSession::CanRewriteLines() const {
    return state_->canRewriteLines;
}

void ChooseLanguage(const std::wstring& language) {
    SetEnvironmentVariableW(L"ORVEX_LANGUAGE", language.c_str());
}

}  // namespace orvex
