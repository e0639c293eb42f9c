#pragma once
#include <string>

namespace orvex {

/// What the message of an exception means to the user, when a LAS or LAZ file cannot be opened; the message
/// itself when it is plain already.
std::wstring PlainLasFailure(const std::wstring& message);

}  // namespace orvex
