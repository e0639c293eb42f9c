#pragma once
#include <windows.h>

#include <sddl.h>

#include <string>

#include "support/SystemMemory_win.h"

namespace orvex {

/// The security descriptor that a text of the security descriptor definition language stands for; null when
/// it cannot be made.
inline LocalMemory<void> SecurityDescriptorOf(const std::wstring& text) {
    void* descriptor = nullptr;
    const bool isMade = ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1,
                                                                             &descriptor, nullptr) != FALSE;
    return LocalMemory<void>(isMade ? descriptor : nullptr);
}

}  // namespace orvex
