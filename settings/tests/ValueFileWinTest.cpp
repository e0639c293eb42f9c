#include <windows.h>

#include <sddl.h>

#include <fstream>
#include <thread>
#include <tuple>

#include "settings/testing/ValueFileFixture.h"
#include "support/Files.h"
#include "support/Handle_win.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
using testing::Get;
using testing::Put;
namespace fs = std::filesystem;

class ValueFileWinTest : public testing::ValueFileFixture {
  protected:
    static std::wstring RightsOf(const fs::path& path) {
        std::byte descriptor[4096];
        DWORD needed = 0;
        wchar_t* made = nullptr;
        if (GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof(descriptor),
                             &needed) == FALSE ||
            ConvertSecurityDescriptorToStringSecurityDescriptorW(
                descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &made, nullptr) == FALSE) {
            return L"unknown";
        }
        const LocalMemory<wchar_t> rights(made);
        return rights.get();
    }
};

TEST_F(ValueFileWinTest, ItsNameMayBeLongAndInAnyScript) {
    std::wstring deep = folder_.Name(L"deep");
    for (int i = 0; i < 20; ++i) {
        deep += L"\\" + std::wstring(L"Größe \u0416 \U0001F600 " + std::wstring(40, L'x'));
    }
    const std::wstring name = deep + L"\\user.sqlite";
    ValueFile file(ToPath(name), ValueFileOwner::User);
    EXPECT_EQ(Get(file, L"a"), "-");
    EXPECT_TRUE(Put(file, L"a", "1"));
    EXPECT_EQ(Get(file, L"a"), "1");

    std::ofstream(ToPath(name), std::ios::binary | std::ios::trunc) << "no database at all";
    EXPECT_TRUE(Put(file, L"b", "2"));
    EXPECT_EQ(Get(file, L"b"), "2");
    EXPECT_TRUE(FileExists(name + L".damaged-1"));
}

TEST_F(ValueFileWinTest, AFileThatAnotherProgramKeepsToItselfGetsItsValuesWhenItIsFree) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    {
        const Handle kept(CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(kept);
        EXPECT_EQ(Get(file_, L"a"), "!");
        EXPECT_TRUE(Put(file_, L"a", "2"));
    }
    EXPECT_EQ(Get(file_, L"b"), "-");
    ValueFile other(path_, ValueFileOwner::User);
    EXPECT_EQ(Get(other, L"a"), "2");
}

TEST_F(ValueFileWinTest, ALockWhoseThreadDiedIsTakenOver) {
    std::thread([this] { std::ignore = new FolderLock(folder_.Path(), Clock::now()); }).join();
    EXPECT_TRUE(FolderLock(folder_.Path(), Clock::now()).IsHeld());
}

TEST_F(ValueFileWinTest, ADamagedFileThatAnotherProgramHasOpenStartsAfresh) {
    std::ofstream(path_, std::ios::binary) << "no database at all";
    // Neither renaming nor deleting is shared.
    const Handle open(CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(open);
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_EQ(NamesInFolder().size(), 2U);
}

TEST_F(ValueFileWinTest, AUsersNewFolderIsKeptFromOthersAndAMachinesIsRead) {
    const fs::path user = folder_.Path() / "user";
    const fs::path machine = folder_.Path() / "machine";
    ValueFile users(user / "user.sqlite", ValueFileOwner::User);
    ValueFile machines(machine / "machine.sqlite", ValueFileOwner::Machine);
    EXPECT_TRUE(Put(users, L"a", "1"));
    EXPECT_TRUE(Put(machines, L"a", "1"));
    for (const fs::path& path : {user, machine, machine / "machine.sqlite"}) {
        const std::wstring rights = RightsOf(path);
        SCOPED_TRACE(ToUtf8(FromPath(path) + L": " + rights));
        EXPECT_NE(rights.find(L";FA;"), std::wstring::npos) << "nobody has full access";
        // Everybody, all users, all who are logged on.
        const bool isRead = rights.find(L";0x1200a9;;;WD)") != std::wstring::npos;
        EXPECT_EQ(isRead, path != user);
        for (const wchar_t* others : {L"FA;;;WD)", L";BU)", L";AU)"}) {
            EXPECT_EQ(rights.find(others), std::wstring::npos);
        }
    }
}

}  // namespace
}  // namespace orvex
