#include <windows.h>

#include <cstdio>
#include <iostream>

#include "host/app/ParentConsole.h"

namespace orvex {
namespace {

bool LeadsSomewhere(DWORD stream) {
    return GetFileType(GetStdHandle(stream)) != FILE_TYPE_UNKNOWN;
}

void LeadToConsole(std::FILE* stream) {
    if (std::freopen("CONOUT$", "w", stream) != nullptr) {
        std::setvbuf(stream, nullptr, _IONBF, 0);
    }
}

}  // namespace

// A program of the window subsystem gets no console window of its own when it is started from the desktop,
// and none of the console's streams when it is started from there.
ParentConsole::ParentConsole() {
    const bool out = LeadsSomewhere(STD_OUTPUT_HANDLE);
    const bool error = LeadsSomewhere(STD_ERROR_HANDLE);
    if ((out && error) || AttachConsole(ATTACH_PARENT_PROCESS) == FALSE) {
        return;
    }
    codePage_ = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    if (!out) {
        LeadToConsole(stdout);
    }
    if (!error) {
        LeadToConsole(stderr);
    }
}

ParentConsole::~ParentConsole() {
    if (codePage_ != 0) {
        std::cout.flush();
        SetConsoleOutputCP(codePage_);
    }
}

}  // namespace orvex
