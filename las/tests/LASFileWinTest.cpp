// Messages of files that cannot be opened on Windows: they carry the system's error number.
#include <gtest/gtest.h>
#include <windows.h>

#include "las/testing/LasFiles.h"
#include "support/Handle_win.h"

namespace orvex {
namespace {

TEST(LASFileOnWindows, NamesTheSystemsErrorNumber) {
    const testing::LasFolder folder;
    const std::string content = testing::LasBuilder().AddPoints(3).Build();
    const std::wstring held = folder.Write(L"gehört mir.las", content);
    const std::wstring written = folder.Write(L"written.las", content);
    const std::wstring empty = folder.Write(L"empty.las", "");
    const Handle exclusive(
        CreateFileW(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const Handle readersOnly(CreateFileW(written.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(exclusive && readersOnly);
    struct Case {
        std::wstring path;
        bool readOnly;
        std::wstring failure;
    };
    for (const Case& c : {
             Case{held, true, L"CreateFile failed on '" + held + L"'. GetLastError: 32."},
             Case{written, false, L"CreateFile failed on '" + written + L"'. GetLastError: 32."},
             Case{written, true, L""},
             Case{empty, true, L"CreateFileMapping failed on '" + empty + L"'. GetLastError: 1006."},
             Case{empty, false, L"CreateFileMapping failed on '" + empty + L"'. GetLastError: 1006."},
             Case{folder.Name(L"a\\b.las"), true,
                  L"'" + folder.Name(L"a\\b.las") + L"' file does not exist. Cannot open."},
         }) {
        EXPECT_EQ(testing::FailureToOpen(c.path, c.readOnly), c.failure);
    }
}

}  // namespace
}  // namespace orvex
