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
    const struct {
        const wchar_t* name;
        std::uint16_t requested, id;
    } steps[] = {{L"a", kAny, 0},
                 {L"b", kAny, 1},
                 {L"a", kAny, 0},
                 {L"a", 0, 0},
                 {L"b", 40, 40},
                 {L"b", kAny, 40},
                 {L"c", kAny, 41},
                 // Two names can be given one id; the largest goes when the last of its names does.
                 {L"a", 41, 41},
                 {L"c", 3, 3},
                 {L"d", kAny, 42},
                 {L"d", 1, 1},
                 {L"a", 2, 2},
                 {L"e", kAny, 41}};
    for (const auto& step : steps) {
        EXPECT_EQ(registry.FileId(step.name, step.requested), step.id) << step.requested;
    }
    EXPECT_EQ(*registry.Enter(L"b").second, L"b");
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
    EXPECT_EQ(registry.Enter(L"one too many").second, nullptr);
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
