#include <windows.h>

#include <winioctl.h>

#include <stdexcept>

#include "support/Handle_win.h"
#include "support/Text.h"
#include "support/testing/SparseFile.h"

namespace orvex::testing {

void GrowSparse(const std::wstring& path, std::uint64_t size) {
    const Handle file(CreateFileW(ToPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD returned = 0;
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    // Wine does not know the request; the file systems below it need none.
    if (file) {
        DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    }
    if (!file || SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) == FALSE ||
        SetEndOfFile(file.Get()) == FALSE) {
        throw std::runtime_error("GrowSparse: " + ToUtf8(path));
    }
}

}  // namespace orvex::testing
