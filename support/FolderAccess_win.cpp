#include <windows.h>

#include "support/FolderAccess.h"
#include "support/Handle_win.h"
#include "support/Text.h"

namespace orvex {

bool CanCreateFilesIn(const std::filesystem::path& folder) {
    // The system's own answer counts access lists and shares, which attributes do not show. The slash keeps a
    // file of that name from being asked for the right to append data, which has the same number.
    const Handle handle(CreateFileW(ToPath(FromPath(folder / L"")).c_str(), FILE_ADD_FILE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    DWORD flags = 0;
    return handle && (GetVolumeInformationByHandleW(handle.Get(), nullptr, 0, nullptr, nullptr, &flags,
                                                    nullptr, 0) == FALSE ||
                      (flags & FILE_READ_ONLY_VOLUME) == 0);
}

}  // namespace orvex
