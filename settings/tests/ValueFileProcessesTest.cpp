// Several users of one file of values, and of the lock of its folder.
#include <cstdlib>
#include <fstream>
#include <thread>

#include "settings/testing/ValueFileFixture.h"
#include "support/testing/ChildProcess.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ChildArguments;
using testing::ChildProcess;
using testing::ChildWork;
using testing::Get;
using testing::Put;

constexpr auto kLongestLife = std::chrono::minutes(1);
constexpr int kLockedAndGone = 7;

// Ends with the lock of a folder in its hands.
const ChildWork kLockAndDie(L"lock and die", [](const ChildArguments& arguments) {
    const FolderLock lock(ToPath(arguments[0]), Clock::now());
    std::_Exit(lock.IsHeld() ? kLockedAndGone : 1);
    return 1;
});

// Arguments: the file, the writer's name, the number of values. A busy machine may refuse a value, which is
// then written again.
const ChildWork kWrite(L"write", [](const ChildArguments& arguments) {
    ValueFile file(ToPath(arguments[0]), ValueFileOwner::User);
    const int values = std::stoi(arguments[2]);
    const auto until = Clock::now() + kLongestLife;
    for (int i = 0; i < values; ++i) {
        while (!Put(file, arguments[1] + L"-" + std::to_wstring(i), std::to_string(i))) {
            if (Clock::now() > until) {
                return 1;
            }
        }
    }
    return 0;
});

class ValueFileProcessesTest : public testing::ValueFileFixture {
  protected:
    /// Runs processes that write at the same time; afterwards every value must be there.
    void Write(int writers, int values) {
        std::vector<ChildProcess> processes;
        processes.reserve(static_cast<std::size_t>(writers));
        for (int writer = 0; writer < writers; ++writer) {
            processes.emplace_back(
                L"write", ChildArguments{FromPath(path_), std::to_wstring(writer), std::to_wstring(values)});
        }
        for (ChildProcess& process : processes) {
            EXPECT_EQ(process.ExitCode(), 0);
        }
        for (int writer = 0; writer < writers; ++writer) {
            for (int i = 0; i < values; ++i) {
                EXPECT_EQ(Get(file_, std::to_wstring(writer) + L"-" + std::to_wstring(i)), std::to_string(i));
            }
        }
    }
};

TEST_F(ValueFileProcessesTest, ALockedFileRefusesUntilItIsFree) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    {
        SqliteConnection holder(path_, SqliteConnection::Mode::Existing,
                                {Clock::now(), Clock::now() + kLongestLife});
        ASSERT_EQ(holder.Execute("BEGIN EXCLUSIVE"), SQLITE_OK);
        EXPECT_EQ(Get(file_, L"a"), "!");
        EXPECT_FALSE(Put(file_, L"a", "2"));
    }
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_TRUE(Put(file_, L"a", "2"));
}

TEST_F(ValueFileProcessesTest, ProcessesThatWriteAtOnceLoseNothing) {
    Write(2, 200);
}

TEST_F(ValueFileProcessesTest, ProcessesThatFindTheSameDamageKeepOneCopyAndAllNewValues) {
    const std::string damaged(4096, 'd');
    std::ofstream(path_, std::ios::binary) << damaged;
    Write(6, 1);
    EXPECT_EQ(NamesOf("user.sqlite.damaged"), std::vector<std::string>{"user.sqlite.damaged-1"});
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"user.sqlite.damaged-1")) == damaged);
}

TEST_F(ValueFileProcessesTest, AFoldersLockIsOneUsersAndFreeAgainWhenThatDies) {
    const auto isFree = [](const std::filesystem::path& folder) {
        bool isHeld = false;
        // Another thread: Windows gives a lock to its holder again.
        std::thread([&] { isHeld = FolderLock(folder, Clock::now()).IsHeld(); }).join();
        return isHeld;
    };
    ChildProcess child(L"lock and die", {FromPath(folder_.Path())});
    ASSERT_EQ(child.ExitCode(), kLockedAndGone);
    // By another path to the same folder.
    FolderLock lock(folder_.Path() / ".." / folder_.Path().filename(), Clock::now() + kLongestLife);
    EXPECT_TRUE(lock.IsHeld());
    EXPECT_EQ(folder_.Entries(), 0U) << "the lock leaves no file";
    EXPECT_FALSE(isFree(folder_.Path()));
    const testing::TemporaryFolder other;
    EXPECT_TRUE(isFree(other.Path()));
    lock.Release();
    EXPECT_FALSE(lock.IsHeld());
    EXPECT_TRUE(isFree(folder_.Path()));
    EXPECT_FALSE(isFree(folder_.Path() / "absent"));
}

}  // namespace
}  // namespace orvex
