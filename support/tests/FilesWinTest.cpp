#include <gtest/gtest.h>
#include <windows.h>

#include "support/Drives.h"
#include "support/Files.h"
#include "support/Handle_win.h"
#include "support/MappedFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(Files, AreTheSameInAnyLetterCaseAndWithAnySeparator) {
    const testing::TemporaryFolder folder;
    const std::wstring file = folder.Write(L"sub\\Größe.las", "x");
    EXPECT_TRUE(IsSameFile(file, folder.Name(L"SUB/GRÖßE.LAS")));
    EXPECT_EQ(CanonicalPath(folder.Name(L"SUB")), CanonicalPath(folder.Name(L"sub")));
}

TEST(Drives, AreLettersSharesAndVolumes) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {LR"(c:\data\tiles)", L"C:"},
        {L"C:", L"C:"},
        {LR"(\\?\c:\data)", L"C:"},
        {LR"(\\nas\share\data)", LR"(\\NAS\SHARE)"},
        {L"//nas/share", LR"(\\NAS\SHARE)"},
        {LR"(\\?\UNC\nas\Share\data)", LR"(\\NAS\SHARE)"},
        {LR"(\\?\unc\nas\share\data)", LR"(\\NAS\SHARE)"},
        {L"//?/UNC/nas/share/data", LR"(\\NAS\SHARE)"},
        {L"//?/c:/data", L"C:"},
        {LR"(\\nas)", LR"(\\NAS)"},
        {LR"(\\?\Volume{12}\data)", L"VOLUME{12}"},
        {L"", L""},
    };
    for (const auto& [folder, drive] : cases) {
        EXPECT_EQ(FindDrivesByName()(folder), drive) << ToUtf8(folder);
    }
}

TEST(MappedFile, NamesTheSystemsReason) {
    const testing::TemporaryFolder folder;
    const std::wstring held = folder.Write(L"held.las", "x");
    const Handle exclusive(
        CreateFileW(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(exclusive);
    struct Case {
        std::wstring path;
        bool readOnly;
        SystemError error;
    };
    for (const Case& c : {
             Case{folder.Name(L"absent.las"), false, 2},
             Case{folder.Name(L"absent\\a.las"), true, 3},
             Case{FromPath(folder.Path()), true, 5},
             Case{held, true, 32},
             Case{L"NUL", true, 222},
             Case{L"", true, 3},
         }) {
        MappedFile file;
        EXPECT_EQ(file.Open(c.path, c.readOnly), c.error) << ToUtf8(c.path);
        EXPECT_FALSE(file.IsOpen());
    }
}

TEST(SystemError, TextsAreOneLine) {
    for (const SystemError error : {ERROR_FILE_NOT_FOUND, ERROR_SHARING_VIOLATION, ERROR_BAD_EXE_FORMAT}) {
        const std::wstring text = SystemErrorText(error);
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(text.find_first_of(L"\r\n"), std::wstring::npos) << ToUtf8(text);
        EXPECT_NE(text.back(), L' ');
    }
    EXPECT_NE(SystemErrorText(0x2FFFFFFF).find(std::to_wstring(0x2FFFFFFF)), std::wstring::npos);
}

}  // namespace
}  // namespace orvex
