#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "support/Format.h"
#include "support/SystemError.h"
#include "support/Text.h"

namespace orvex {

std::wstring SystemErrorText(SystemError error) {
    std::array<wchar_t, 2048> buffer{};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(error), 0, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
    std::wstring text(buffer.data(), length);
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text.empty() ? FormatText(Text(41060_lsid), {error}) : text;
}

SystemError LastStreamError() {
    // The runtime keeps the system's number beside errno, but has none for a write that wrote nothing.
    if (_doserrno != 0) {
        return static_cast<SystemError>(_doserrno);
    }
    return errno == ENOSPC ? ERROR_DISK_FULL : ERROR_IO_DEVICE;
}

void ForgetStreamError() {
    errno = 0;
    _doserrno = 0;
}

}  // namespace orvex
