#include "crs/CrsCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace orvex {
namespace {

CrsPtr Named(const std::string& wkt) {
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = wkt;
    return description;
}

TEST(CrsCache, KeepsTheLatestUsed) {
    std::vector<std::string> described;
    CrsCache cache(3, [&](const std::string& wkt) {
        described.push_back(wkt);
        return Named(wkt);
    });
    const CrsPtr a = cache.Get("a");
    cache.Get("b");
    cache.Get("c");
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("d");  // drops b, the one not used for longest
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("c");
    cache.Get("b");
    EXPECT_EQ(described, (std::vector<std::string>{"a", "b", "c", "d", "b"}));
}

TEST(CrsCache, AFailedDescriptionIsTriedAgain) {
    int calls = 0;
    CrsCache cache(3, [&](const std::string& wkt) {
        if (++calls == 1) {
            throw std::runtime_error("no memory");
        }
        return Named(wkt);
    });
    EXPECT_THROW(cache.Get("a"), std::runtime_error);
    EXPECT_EQ(cache.Get("a")->sourceWkt, "a");
}

TEST(CrsCache, ThreadsThatAskAtOnceGetOneDescription) {
    std::atomic<int> running{0}, overlaps{0}, calls{0};
    CrsCache cache(100, [&](const std::string& wkt) {
        overlaps += running++ > 0 ? 1 : 0;
        ++calls;
        std::this_thread::yield();
        --running;
        return Named(wkt);
    });
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) {
                const std::string wkt = std::to_string(i % 50);
                wrong += cache.Get(wkt)->sourceWkt == wkt ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(calls, 50);
}

}  // namespace
}  // namespace orvex
