#include <cerrno>
#include <system_error>

#include "support/SystemError.h"
#include "support/Text.h"

namespace orvex {

std::wstring SystemErrorText(SystemError error) {
    return FromUtf8(std::generic_category().message(error));
}

SystemError LastStreamError() {
    return errno != 0 ? errno : EIO;
}

void ForgetStreamError() {
    errno = 0;
}

}  // namespace orvex
