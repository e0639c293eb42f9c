#pragma once
// The system's error numbers and its texts for them.
#include <string>

namespace orvex {

/// The result of a system call: 0 for success, else the system's error number (errno, GetLastError).
using SystemError = int;

/// The text that the system has for an error number, in the user's language, without a line end.
std::wstring SystemErrorText(SystemError error);

/// The reason of the standard stream's operation that has just failed; call it first thing after the failure.
/// Never 0: a general input or output error when the reason is not known.
SystemError LastStreamError();
/// Forgets the reasons of earlier operations; to be called before the one that LastStreamError is asked
/// about.
void ForgetStreamError();

}  // namespace orvex
