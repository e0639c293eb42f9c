#include "support/Log.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvex {
namespace {

/// Lines as a receiver gets them, each behind the number of its level.
class Lines {
  public:
    LogReceiver Receiver() {
        return [this](LogLevel level, const std::string& line) {
            const std::lock_guard guard(lock_);
            lines_.push_back(std::to_string(static_cast<int>(level)) + ' ' + line);
        };
    }
    std::vector<std::string> Taken() { return std::exchange(lines_, {}); }

  private:
    std::mutex lock_;
    std::vector<std::string> lines_;
};

using Expected = std::vector<std::string>;

void LogOnAnotherThread(const std::wstring& line) {
    std::thread([&] { LogInfo(line); }).join();
}

TEST(LogRedirection, TheLatestReceiverGetsTheLinesUntilItIsGone) {
    Lines first;
    Lines second;
    {
        const LogRedirection outer(first.Receiver());
        LogInfo(L"caf\u00E9");
        LogOnAnotherThread(L"of a worker");
        {
            const LogRedirection inner(second.Receiver());
            const LogRedirection none{LogReceiver()};
            LogWarning(L"inner");
        }
        LogWarning(L"outer again");
    }
    LogInfo(L"to the file");
    EXPECT_EQ(first.Taken(), (Expected{"0 caf\xC3\xA9", "0 of a worker", "1 outer again"}));
    EXPECT_EQ(second.Taken(), Expected{"1 inner"});
}

TEST(LogRedirection, AThreadWithAReceiverOfItsOwnKeepsItsLines) {
    Lines own;
    Lines later;
    const LogRedirection redirection(own.Receiver());
    std::thread([&] {
        const LogRedirection other(later.Receiver());
        LogInfo(L"theirs");
        std::thread([] { LogInfo(L"of nobody's thread"); }).join();
    }).join();
    LogInfo(L"mine");
    EXPECT_EQ(own.Taken(), Expected{"0 mine"});
    EXPECT_EQ(later.Taken(), (Expected{"0 theirs", "0 of nobody's thread"}));
}

TEST(LogRedirection, AReceiverThatThrowsOrLogsIsCalledOnceForALine) {
    int calls = 0;
    const LogRedirection redirection([&](LogLevel, const std::string&) {
        ++calls;
        LogInfo(L"a line of the receiver's own");
        throw std::runtime_error("the host's log is full");
    });
    LogWarning(L"line");
    LogWarning(L"line");
    EXPECT_EQ(calls, 2);
}

TEST(LogRedirection, ItsEndWaitsForARunningCall) {
    std::promise<void> entered;
    std::promise<void> leave;
    bool isLeft = false;
    std::thread worker;
    {
        const LogRedirection redirection([&](LogLevel, const std::string&) {
            entered.set_value();
            leave.get_future().wait();
            isLeft = true;
        });
        worker = std::thread([] { LogInfo(L"line"); });
        entered.get_future().wait();
        leave.set_value();
    }
    EXPECT_TRUE(isLeft);
    worker.join();
}

}  // namespace
}  // namespace orvex
