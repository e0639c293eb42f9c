// Several processes at one file of values, and at the lock of its folder.
#include <fstream>
#include <future>
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
using testing::kLongestCall;
using testing::Put;
namespace fs = std::filesystem;

constexpr auto kLongestLife = std::chrono::minutes(1);

/// Tells by a file that the child has what it holds, and holds it until it is killed.
int Hold(bool isHeld, const std::wstring& told) {
    if (isHeld) {
        std::ofstream(ToPath(told)) << "held";
        std::this_thread::sleep_for(kLongestLife);
    }
    return 1;
}

bool WaitFor(const fs::path& file) {
    const auto until = Clock::now() + kLongestLife;
    while (!fs::exists(file) && Clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return fs::exists(file);
}

// Arguments: the file, the file that tells.
const ChildWork kHoldFile(L"hold file", [](const ChildArguments& arguments) {
    SqliteConnection connection(ToPath(arguments[0]), SqliteConnection::Mode::Existing,
                                {Clock::now(), Clock::now() + kLongestLife});
    return Hold(connection.Execute("BEGIN EXCLUSIVE") == SQLITE_OK, arguments[1]);
});

// Arguments: the folder, the file that tells.
const ChildWork kHoldFolder(L"hold folder", [](const ChildArguments& arguments) {
    const FolderLock lock(ToPath(arguments[0]), Clock::now());
    return Hold(lock.IsHeld(), arguments[1]);
});

// Arguments: the file, the writer's name, how many values it writes. A busy machine may refuse a value, which
// is told; it is then written again.
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
    std::vector<ChildProcess> Writers(int count, int values) const {
        std::vector<ChildProcess> writers;
        writers.reserve(static_cast<std::size_t>(count));
        for (int writer = 0; writer < count; ++writer) {
            writers.emplace_back(
                L"write", ChildArguments{FromPath(path_), std::to_wstring(writer), std::to_wstring(values)});
        }
        return writers;
    }

    fs::path told_ = folder_.Path() / "told";
};

TEST_F(ValueFileProcessesTest, ALockedFileHoldsACallUpForLessThanASecondAndOnlyOnce) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    ChildProcess holder(L"hold file", {FromPath(path_), FromPath(told_)});
    ASSERT_TRUE(WaitFor(told_));

    const auto start = Clock::now();
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_LT(Clock::now() - start, kLongestCall);
    const auto next = Clock::now();
    for (int i = 0; i < 10; ++i) {
        EXPECT_FALSE(Put(file_, L"a", "2"));
    }
    EXPECT_LT(Clock::now() - next, kLongestCall / 2);

    holder.Kill();
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_TRUE(Put(file_, L"a", "2"));
}

TEST_F(ValueFileProcessesTest, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int kWriters = 2;
    constexpr int kValues = 200;
    for (ChildProcess& writer : Writers(kWriters, kValues)) {
        EXPECT_EQ(writer.ExitCode(), 0);
    }
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kValues; ++i) {
            EXPECT_EQ(Get(file_, std::to_wstring(writer) + L"-" + std::to_wstring(i)), std::to_string(i));
        }
    }
}

TEST_F(ValueFileProcessesTest, ProcessesThatFindTheSameDamageKeepOneCopyAndAllNewValues) {
    constexpr int kWriters = 6;
    std::ofstream(path_, std::ios::binary) << std::string(4096, 'd');
    for (ChildProcess& writer : Writers(kWriters, 1)) {
        EXPECT_EQ(writer.ExitCode(), 0);
    }
    for (int writer = 0; writer < kWriters; ++writer) {
        EXPECT_EQ(Get(file_, std::to_wstring(writer) + L"-0"), "0");
    }
    EXPECT_EQ(NamesOf("user.sqlite.damaged"), std::vector<std::string>{"user.sqlite.damaged-1"});
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"user.sqlite.damaged-1")) == std::string(4096, 'd'));
}

TEST_F(ValueFileProcessesTest, AFoldersLockIsOneProcesssAndFreeAgainWhenThatDies) {
    constexpr auto kWait = std::chrono::milliseconds(100);
    ChildProcess holder(L"hold folder", {FromPath(folder_.Path()), FromPath(told_)});
    ASSERT_TRUE(WaitFor(told_));
    EXPECT_EQ(folder_.Entries(), 1U) << "the lock leaves no file";
    const auto start = Clock::now();
    EXPECT_FALSE(FolderLock(folder_.Path(), start + kWait).IsHeld());
    EXPECT_GE(Clock::now() - start, kWait);
    const testing::TemporaryFolder other;
    EXPECT_TRUE(FolderLock(other.Path(), Clock::now()).IsHeld());

    auto next = std::async(std::launch::async,
                           [&] { return FolderLock(folder_.Path(), Clock::now() + kLongestLife).IsHeld(); });
    std::this_thread::sleep_for(kWait);  // so that it waits by now, most likely
    holder.Kill();
    EXPECT_TRUE(next.get());
    {
        // By another path to the same folder.
        FolderLock lock(folder_.Path() / ".." / folder_.Path().filename(), Clock::now() + kLongestCall);
        EXPECT_TRUE(lock.IsHeld());
        lock.Release();
        EXPECT_FALSE(lock.IsHeld());
    }
    EXPECT_TRUE(FolderLock(folder_.Path(), Clock::now()).IsHeld());
    EXPECT_FALSE(FolderLock(folder_.Path() / "absent", Clock::now()).IsHeld());
}

}  // namespace
}  // namespace orvex
