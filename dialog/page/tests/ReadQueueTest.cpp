#include "dialog/page/ReadQueue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace orvex::adding {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kPatience = std::chrono::seconds(1);

struct Nothing final : Inspected {};

// A queue whose calls return, and whose time passes, when the test says so. Folders are named by their drive
// and a digit: "A1".
class ReadQueues : public ::testing::Test {
  protected:
    void Add(const std::wstring& folder, std::size_t files = 1) {
        ReadQueue::Folder* known = queue.FindFolder(folder);
        for (; files > 0; --files) {
            known = known != nullptr ? known : &queue.AddFolder(folder, folder.substr(0, 1));
            queue.AddFile(known);
        }
    }
    ReadQueue::Drive& Drive(std::size_t number = 0) { return *queue.Drives().at(number); }
    ReadQueue::Call& Claim(std::size_t drive = 0) { return queue.Claim(Drive(drive), now); }
    void Return(ReadQueue::Call& call) {
        std::vector<InspectedPtr> records(ReadQueue::Places(call).size());
        std::ranges::generate(records, [] { return std::make_unique<Nothing>(); });
        queue.Return(call, std::move(records), now);
    }
    void ReadAll(std::size_t drive) {
        while (queue.CanClaim(Drive(drive))) {
            Return(Claim(drive));
        }
    }
    // Each with a letter for its state: "0R" was read, "1A" is awaited.
    std::vector<std::string> Take(milliseconds later = milliseconds(0)) {
        now += later;
        std::vector<std::string> taken;
        for (const ReadQueue::Taken& one : queue.Take(now)) {
            taken.push_back(std::to_string(one.place) + "RLAS"[static_cast<int>(one.state)]);
        }
        return taken;
    }
    static std::size_t First(const ReadQueue::Call& call) { return ReadQueue::Places(call).front(); }

    ReadQueue queue{1, kPatience};
    Clock::time_point now{std::chrono::hours(1)};
};

TEST_F(ReadQueues, AnOverdueCallHoldsUpItsFolderAloneAndOnlyUntilItReturns) {
    Add(L"A1", 2);
    Add(L"A2", 1);
    Add(L"A1", 1);
    ReadQueue::Call& dead = Claim();
    EXPECT_THAT(Take(milliseconds(999)), IsEmpty()) << "it may take its time";
    EXPECT_THAT(Take(milliseconds(1)), ElementsAre("0A", "1A"));
    ReadQueue::Call& other = Claim();
    EXPECT_EQ(First(other), 2U) << "not of the folder that does not answer";
    EXPECT_FALSE(queue.CanClaim(Drive()));
    Return(other);
    EXPECT_THAT(Take(), ElementsAre("2R", "3A"));
    Return(dead);
    EXPECT_THAT(Take(), ElementsAre("0R"));
    ReadAll(0);
    EXPECT_THAT(Take(), ElementsAre("1R", "3R"));
    EXPECT_EQ(queue.Unread(), 0U);
}

TEST_F(ReadQueues, ADriveOnWhichFourFoldersDoNotAnswerIsAwaitedAsAWhole) {
    for (const wchar_t* folder : {L"A1", L"A2", L"A3", L"A4", L"A5", L"B1"}) {
        Add(folder);
    }
    std::vector<ReadQueue::Call*> calls;
    for (int i = 0; i < 4; ++i) {
        Take();  // more calls at once
        calls.push_back(&Claim(0));
    }
    ReadAll(1);
    EXPECT_THAT(Take(kPatience), ElementsAre("0A", "1A", "2A", "3A", "4A", "5R"));
    EXPECT_FALSE(queue.CanClaim(Drive(0)));
    Return(*calls.front());
    EXPECT_TRUE(queue.CanClaim(Drive(0)));
}

TEST_F(ReadQueues, ASlowDriveHoldsUpItsOwnFilesAsLongAsItLikesAndOthersForASecondAltogether) {
    Add(L"A1", 200);
    Add(L"B1", 1);
    const auto stepsUntil = [this](const std::string& wanted, int most) {
        for (int steps = 0; steps < most; ++steps) {
            ReadQueue::Call& call = Claim(0);
            const std::vector<std::string> taken = Take(milliseconds(50));
            Return(call);
            if (std::ranges::find(taken, wanted) != taken.end()) {
                return steps;
            }
        }
        return most;
    };
    EXPECT_EQ(stepsUntil("199A", 100), 100) << "nobody else waits";
    ReadAll(1);
    EXPECT_EQ(stepsUntil("199A", 100), 20);
    EXPECT_EQ(stepsUntil("150R", 100), 30) << "when it is read";
}

TEST_F(ReadQueues, ReadsAheadSoFarButNeverLeavesOutTheFileThatIsDue) {
    Add(L"A1", 2);
    Add(L"A2", 300);
    ReadQueue::Call& first = Claim();
    EXPECT_THAT(Take(kPatience), ElementsAre("0A", "1A"));
    while (queue.CanClaim(Drive())) {
        Return(Claim());
    }
    Return(first);
    EXPECT_TRUE(queue.CanClaim(Drive())) << "its folder answers again";
    EXPECT_EQ(First(Claim()), 1U);
    EXPECT_EQ(Take().size(), 256U);
}

TEST_F(ReadQueues, SkippedFilesAreTakenAsSuchAndNotReadAnyMore) {
    Add(L"A1", 2);
    Add(L"B1", 1);
    Add(L"A1", 1);
    ReadQueue::Call& dead = Claim(0);
    EXPECT_THAT(Take(kPatience), ElementsAre("0A", "1A"));
    queue.Skip();
    EXPECT_TRUE(queue.WasSkipped(0) && queue.WasSkipped(1));
    EXPECT_EQ(queue.FirstInWork(), std::nullopt);
    ReadAll(1);
    EXPECT_THAT(Take(), ElementsAre("2R", "3S"));
    EXPECT_EQ(queue.Unread(), 0U);
    Add(L"A1");
    EXPECT_THAT(Take(), ElementsAre("4S")) << "planned later";
    Return(dead);
    EXPECT_THAT(Take(), IsEmpty());
    EXPECT_EQ(queue.Unread(), 0U);
    EXPECT_FALSE(queue.CanClaim(Drive(0)));
}

TEST_F(ReadQueues, TheRestIsTakenWithGaps) {
    Add(L"A1", 2);
    Add(L"B1", 1);
    queue.AddFile(nullptr);
    Claim(0);
    ReadAll(1);
    std::vector<ReadQueue::Taken::State> states;
    for (const ReadQueue::Taken& one : queue.TakeRest()) {
        states.push_back(one.state);
    }
    using enum ReadQueue::Taken::State;
    EXPECT_THAT(states, ElementsAre(Skipped, Skipped, Read, Listed));
    EXPECT_EQ(queue.FirstInWork(), 0U);
}

TEST_F(ReadQueues, ADeadDriveAmongManyIsSkippedAlone) {
    constexpr std::size_t kOthers = 99;
    for (wchar_t drive = L'a'; drive < static_cast<wchar_t>(L'a' + kOthers); ++drive) {
        Add({drive, L'1'});
    }
    for (const wchar_t* folder : {L"A1", L"A2", L"A3", L"A4", L"A5"}) {
        Add(folder);
    }
    for (int i = 0; i < 4; ++i) {
        Take();
        Claim(0);
    }
    Take(kPatience);
    queue.Skip();
    EXPECT_EQ(queue.Unread(), kOthers);
    for (std::size_t drive = 0; drive < queue.Drives().size(); ++drive) {
        ReadAll(drive);
    }
    EXPECT_EQ(queue.Unread(), 0U);
}

TEST_F(ReadQueues, ThreadsAreLimitedInAllButEachDriveHasOneThatIsNotOverdue) {
    const auto staff = [this] {
        std::size_t threads = 0;
        for (ReadQueue::Drive* const drive : queue.Drives()) {
            for (; queue.LacksThread(*drive); ++threads) {
                queue.AddThread(*drive);
                queue.Claim(*drive, now);
            }
        }
        return threads;
    };
    for (int drive = 0; drive < 20; ++drive) {
        for (const wchar_t* folder : {L"1", L"2", L"3", L"4", L"5", L"6", L"7", L"8"}) {
            Add(static_cast<wchar_t>(L'A' + drive) + std::wstring(folder));
        }
    }
    for (int i = 0; i < 3; ++i) {
        Take();
    }
    for (const std::size_t others : {16U, 12U, 8U, 4U}) {
        EXPECT_EQ(staff(), 16U + others) << "four drives have four more, the others one";
        EXPECT_EQ(staff(), 0U);
        Take(kPatience);
    }
    EXPECT_EQ(staff(), 0U) << "four are overdue on each";
}

TEST_F(ReadQueues, ThreadsOfADriveWithNothingLeftToClaimMakeRoomForOthers) {
    Add(L"A1", 40);
    Add(L"B1", 40);
    for (int i = 0; i < 3; ++i) {
        Take();
    }
    for (int i = 0; i < 15; ++i) {
        queue.AddThread(Drive(0));
    }
    queue.AddThread(Drive(1));
    ReadQueue::Call& only = Claim(1);
    EXPECT_TRUE(ReadQueue::HasIdleThread(Drive(0)));
    EXPECT_FALSE(ReadQueue::HasIdleThread(Drive(1)));
    EXPECT_FALSE(queue.LacksThread(Drive(1)));
    ReadAll(0);
    EXPECT_FALSE(ReadQueue::HasUnclaimed(Drive(0)));
    EXPECT_TRUE(ReadQueue::HasUnclaimed(Drive(1)));
    queue.RemoveThread(Drive(0));
    EXPECT_TRUE(queue.LacksThread(Drive(1)));
    Take(kPatience);
    queue.Skip();
    EXPECT_FALSE(ReadQueue::HasUnclaimed(Drive(1))) << "skipped";
    Return(only);
}

}  // namespace
}  // namespace orvex::adding
