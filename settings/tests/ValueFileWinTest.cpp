#include <windows.h>

#include <sddl.h>

#include <fstream>

#include "settings/testing/ValueFileFixture.h"
#include "support/Handle_win.h"
#include "support/SystemMemory_win.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
using testing::Get;
using testing::kLongestCall;
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

/// A folder whose path is too long for calls that take 260 characters, or SQLite's thousand bytes, and not
/// ASCII; its names go on the prefix that lifts the limit, so the standard library cannot remove them.
class LongFolder {
  public:
    explicit LongFolder(const fs::path& above) : top_(L"\\\\?\\" + above.native()), path_(above) {
        for (int i = 0; i < 20; ++i) {
            path_ /= L"Größe \u0416 \U0001F600 " + std::wstring(40, L'x');
        }
    }
    ~LongFolder() {
        const fs::path prefixed(L"\\\\?\\" + path_.native());
        for (const std::wstring& name : Names()) {
            DeleteFileW((prefixed / name).c_str());
        }
        for (fs::path folder = prefixed; folder != top_; folder = folder.parent_path()) {
            RemoveDirectoryW(folder.c_str());
        }
    }
    LongFolder(const LongFolder&) = delete;
    LongFolder& operator=(const LongFolder&) = delete;

    const fs::path& Path() const { return path_; }
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        WIN32_FIND_DATAW found{};
        const HANDLE search = FindFirstFileW((L"\\\\?\\" + (path_ / L"*").native()).c_str(), &found);
        for (BOOL isFound = search != INVALID_HANDLE_VALUE; isFound != FALSE;
             isFound = FindNextFileW(search, &found)) {
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                names.emplace_back(found.cFileName);
            }
        }
        FindClose(search);
        std::ranges::sort(names);
        return names;
    }
    void Overwrite(const std::wstring& name, std::string_view bytes) const {
        const Handle file(CreateFileW((L"\\\\?\\" + (path_ / name).native()).c_str(), GENERIC_WRITE, 0,
                                      nullptr, TRUNCATE_EXISTING, 0, nullptr));
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    }

  private:
    fs::path top_;
    fs::path path_;
};

TEST(SystemPath, IsFullAndPrefixedWhenLong) {
    // Wine takes long names without the prefix; Windows does not.
    const std::wstring shorter(100, L'x');
    const std::wstring longer(200, L'x');
    const struct {
        std::wstring given, system;
    } cases[] = {
        {L"", L""},
        {LR"(C:\folder\)" + shorter, LR"(C:\folder\)" + shorter},
        {L"C:/folder/./a/../" + shorter, LR"(C:\folder\)" + shorter},
        {L"C:/folder/./a/../" + longer, LR"(\\?\C:\folder\)" + longer},
        {LR"(\\server\share\)" + longer, LR"(\\?\UNC\server\share\)" + longer},
        {L"//server/share/" + longer, LR"(\\?\UNC\server\share\)" + longer},
        {LR"(\\?\C:\)" + longer, LR"(\\?\C:\)" + longer},
        {L"user.sqlite", (fs::current_path() / L"user.sqlite").native()},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SystemPathOf(c.given).native(), c.system);
    }
}

TEST_F(ValueFileWinTest, ItsNameMayBeLongAndInAnyScript) {
    const LongFolder folder(folder_.Path());
    ASSERT_GT(folder.Path().native().size(), 1040U);
    ValueFile file(folder.Path() / "user.sqlite", ValueFileOwner::User);
    EXPECT_EQ(Get(file, L"a"), "-");
    EXPECT_TRUE(Put(file, L"a", "1"));
    EXPECT_EQ(Get(file, L"a"), "1");
    EXPECT_EQ(folder.Names(), std::vector<std::wstring>{L"user.sqlite"});

    folder.Overwrite(L"user.sqlite", "no database at all");
    EXPECT_TRUE(Put(file, L"b", "2"));
    EXPECT_EQ(Get(file, L"a"), "-");
    EXPECT_EQ(Get(file, L"b"), "2");
    EXPECT_EQ(folder.Names(), (std::vector<std::wstring>{L"user.sqlite", L"user.sqlite.damaged-1"}));
}

TEST_F(ValueFileWinTest, AFileThatAnotherProgramKeepsToItselfHoldsACallUpForLessThanASecondAndOnlyOnce) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    {
        const Handle kept(CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(kept);
        const auto start = Clock::now();
        EXPECT_EQ(Get(file_, L"a"), "!");
        EXPECT_LT(Clock::now() - start, kLongestCall);
        const auto next = Clock::now();
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(Get(file_, L"a"), "!");
            EXPECT_FALSE(Put(file_, L"a", "2"));
        }
        EXPECT_LT(Clock::now() - next, kLongestCall / 2);
    }
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_TRUE(Put(file_, L"a", "2"));
}

TEST_F(ValueFileWinTest, ADamagedFileThatAnotherProgramHasOpenStartsAfresh) {
    std::ofstream(path_, std::ios::binary) << "no database at all";
    // Neither renaming nor deleting is shared.
    const Handle open(CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(open);
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_EQ(NamesOf("").size(), 2U);
}

TEST_F(ValueFileWinTest, ADeviceInTheFilesPlaceIsLeftAlone) {
    for (const wchar_t* name : {L"NUL", L"nul"}) {
        ValueFile file(folder_.Path() / name, ValueFileOwner::User);
        EXPECT_EQ(Get(file, L"a"), "!");
        EXPECT_FALSE(Put(file, L"a", "1"));
    }
    EXPECT_TRUE(NamesOf("").empty());
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
