#include "support/TextCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

namespace orvex {
namespace {

using ::testing::ElementsAre;

TEST(TextCache, KeepsTheLatestUsedAndNoFailure) {
    std::vector<std::string> made;
    TextCache<std::string> cache(3, 1000);
    const auto get = [&](const std::string& text) {
        return cache.Get(text, [&] {
            made.push_back(text);
            return made.size() == 1 ? throw std::runtime_error("no memory") : text + "!";
        });
    };
    EXPECT_THROW(get("a"), std::runtime_error);
    EXPECT_EQ(get("a"), "a!");
    get("b");
    get("c");
    get("a");
    get("d");  // drops b, the one not used for longest
    get("a");
    get("c");
    EXPECT_EQ(get("b"), "b!");
    EXPECT_THAT(made, ElementsAre("a", "a", "b", "c", "d", "b"));
}

TEST(TextCache, KeepsNoMoreBytesOfTextThanItMay) {
    int made = 0;
    TextCache<int> cache(100, 10);
    const auto get = [&](std::size_t length) {
        return cache.Get(std::string(length, 'a'), [&] { return ++made; });
    };
    EXPECT_EQ(get(4), 1);
    EXPECT_EQ(get(5), 2);
    EXPECT_EQ(get(11), 3);
    EXPECT_EQ(get(11), 4) << "too long to keep";
    EXPECT_EQ(get(4), 1) << "and drops nothing";
    EXPECT_EQ(get(3), 5);
    EXPECT_EQ(get(4), 1);
    EXPECT_EQ(get(5), 6);
}

TEST(TextCache, ThreadsThatAskAtOnceGetOneValue) {
    std::atomic<int> running{0}, overlaps{0}, calls{0}, wrong{0};
    TextCache<std::string> cache(100, 1000);
    constexpr int kThreads = 4;
    std::vector<std::future<void>> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int i = 0; i < 2000; ++i) {
                std::string text = std::to_string(i % 50);
                const std::string value = cache.Get(text, [&] {
                    overlaps += running++ > 0 ? 1 : 0;
                    ++calls;
                    std::this_thread::yield();
                    --running;
                    return text;
                });
                wrong += value == text ? 0 : 1;
            }
        }));
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(calls, 50);
}

}  // namespace
}  // namespace orvex
