#include "crs/CrsCache.h"

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

CrsPtr Described(const std::string& wkt) {
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = wkt;
    return description;
}

TEST(CrsCache, KeepsTheLatestUsedAndNoFailure) {
    std::vector<std::string> described;
    CrsCache cache(3, [&](const std::string& wkt) {
        described.push_back(wkt);
        return described.size() == 1 ? throw std::runtime_error("no memory") : Described(wkt);
    });
    EXPECT_THROW(cache.Get("a"), std::runtime_error);
    const CrsPtr a = cache.Get("a");
    cache.Get("b");
    cache.Get("c");
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("d");  // drops b, the one not used for longest
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("c");
    EXPECT_EQ(cache.Get("b")->sourceWkt, "b");
    EXPECT_THAT(described, ElementsAre("a", "a", "b", "c", "d", "b"));
}

TEST(CrsCache, ThreadsThatAskAtOnceGetOneDescription) {
    std::atomic<int> running{0}, overlaps{0}, calls{0}, wrong{0};
    CrsCache cache(100, [&](const std::string& wkt) {
        overlaps += running++ > 0 ? 1 : 0;
        ++calls;
        std::this_thread::yield();
        --running;
        return Described(wkt);
    });
    constexpr int kThreads = 4;
    std::vector<std::future<void>> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int i = 0; i < 2000; ++i) {
                const std::string wkt = std::to_string(i % 50);
                wrong += cache.Get(wkt)->sourceWkt == wkt ? 0 : 1;
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
