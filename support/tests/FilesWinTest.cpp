#include <gtest/gtest.h>
#include <windows.h>

#include "support/Files.h"
#include "support/MappedFile.h"
#include "support/testing/Protection_win.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(Files, AHeldFileIsNotReplaced) {
    const testing::TemporaryFolder folder;
    const std::wstring from = folder.Write(L"from", "new");
    const std::wstring to = folder.Write(L"to", "old");
    {
        MappedFile holder;
        ASSERT_EQ(holder.Open(to, true), 0);
        EXPECT_EQ(RenameFile(from, to), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(RenameFile(from, to), 0);
    EXPECT_EQ(testing::ReadFile(to), "new");
}

TEST(Files, AProtectedFileIsNotReplaced) {
    if (!testing::IsProtectionKept()) {
        GTEST_SKIP() << "this user may write read-only files, as root may under Wine";
    }
    const testing::TemporaryFolder folder;
    const std::wstring from = folder.Write(L"from", "new");
    const std::wstring to = folder.Write(L"to", "old");
    SetFileAttributesW(to.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(RenameFile(from, to), ERROR_ACCESS_DENIED);
    MappedFile file;
    EXPECT_EQ(file.Open(to, false), ERROR_ACCESS_DENIED);
    EXPECT_EQ(file.Open(to, true), 0);
    SetFileAttributesW(to.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(Files, AreTheSameInAnyLetterCaseAndWithAnySeparator) {
    const testing::TemporaryFolder folder;
    const std::wstring file = folder.Write(L"sub\\Größe.las", "x");
    EXPECT_TRUE(IsSameFile(file, folder.Name(L"SUB/GRÖSSE.LAS")) ==
                FileExists(folder.Name(L"SUB/GRÖSSE.LAS")));
    EXPECT_TRUE(FileExists(folder.Name(L"SUB/GRÖßE.LAS")));
    EXPECT_TRUE(IsSameFile(file, folder.Name(L"SUB/GRÖßE.LAS")));
    EXPECT_EQ(CanonicalPath(folder.Name(L"SUB")), CanonicalPath(folder.Name(L"sub")));
}

}  // namespace
}  // namespace orvex
