#include "las/FileIdRegistry.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace orvex {
namespace {

constexpr std::uint16_t kAny = FileIdRegistry::kAny;

TEST(FileIdRegistry, GivesAndReplacesIds) {
    FileIdRegistry registry;
    EXPECT_EQ(registry.FileId(L"a", kAny), 0);
    EXPECT_EQ(registry.FileId(L"b", kAny), 1);
    const std::wstring* recorded = registry.RecordedName(L"b");
    ASSERT_NE(recorded, nullptr);
    EXPECT_EQ(registry.RecordedName(L"never asked for"), nullptr);
    EXPECT_EQ(registry.FileId(L"a", kAny), 0);
    EXPECT_EQ(registry.FileId(L"a", 0), 0);
    EXPECT_EQ(registry.FileId(L"b", 40), 40);
    EXPECT_EQ(registry.FileId(L"b", kAny), 40);
    EXPECT_EQ(registry.FileId(L"c", kAny), 41);
    // Two names can be given one id; the largest goes when the last of its names does.
    EXPECT_EQ(registry.FileId(L"a", 41), 41);
    EXPECT_EQ(registry.FileId(L"c", 3), 3);
    EXPECT_EQ(registry.FileId(L"d", kAny), 42);
    EXPECT_EQ(registry.FileId(L"d", 1), 1);
    EXPECT_EQ(registry.FileId(L"a", 2), 2);
    EXPECT_EQ(registry.FileId(L"e", kAny), 41);
    EXPECT_EQ(*recorded, L"b");
}

TEST(FileIdRegistry, ReusesFreeIdsAtTheEndOfTheNumbers) {
    FileIdRegistry registry;
    EXPECT_EQ(registry.FileId(L"last", 65534), 65534);
    EXPECT_EQ(registry.FileId(L"first", kAny), 0);
    EXPECT_EQ(registry.FileId(L"second", kAny), 1);
    for (std::uint16_t id = 2; id < 65534; ++id) {
        registry.FileId(std::to_wstring(id), id);
    }
    EXPECT_EQ(registry.FileId(L"one too many", kAny), kAny);
    EXPECT_EQ(registry.FileId(L"last", kAny), 65534);
    registry.FileId(L"7", 8);
    EXPECT_EQ(registry.FileId(L"one too many", kAny), 7);
}

TEST(FileIdRegistry, IsSafeFromManyThreads) {
    FileIdRegistry registry;
    constexpr int kNames = 200;
    std::vector<std::vector<std::uint16_t>> seen(8);
    {
        std::vector<std::jthread> threads;
        threads.reserve(seen.size());
        for (auto& ids : seen) {
            threads.emplace_back([&registry, &ids] {
                for (int i = 0; i < kNames; ++i) {
                    ids.push_back(registry.FileId(std::to_wstring(i), kAny));
                }
            });
        }
    }
    for (const auto& ids : seen) {
        EXPECT_EQ(ids, seen.front());
    }
    EXPECT_EQ(std::set(seen.front().begin(), seen.front().end()).size(), std::size_t{kNames});
}

}  // namespace
}  // namespace orvex
