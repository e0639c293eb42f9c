#pragma once
#include <windows.h>

#include "support/Handle_win.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// Whether a read-only file is kept from being written. Wine leaves that to the system below it, which lets
/// root write.
inline bool IsProtectionKept() {
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"protected", "x");
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    const bool isKept =
        !Handle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    return isKept;
}

}  // namespace orvex::testing
