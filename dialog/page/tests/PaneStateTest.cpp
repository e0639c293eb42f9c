#include "dialog/page/PaneState.h"

#include <gtest/gtest.h>

#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"

namespace orvex {
namespace {

TEST(PaneStateStore, ReadsBackAndForgivesDamage) {
    testing::FakeRegistry registry;
    const OptionStore store(registry);
    constexpr const wchar_t* kName = L"AddLASFilesDetails";
    EXPECT_EQ(ReadPaneState(store, kName), PaneState{});
    SavePaneState(store, kName, {true, 321});
    EXPECT_EQ(ReadPaneState(store, kName), (PaneState{true, 321}));
    EXPECT_EQ(ReadPaneState(store, L"Another"), PaneState{});
    for (const char* damaged : {"", "f", "f ", "o -5", "o 12x", "o 99999999999", "o 20000"}) {
        store.WritePlacement(kName, damaged);
        EXPECT_EQ(ReadPaneState(store, kName), PaneState{}) << damaged;
    }
}

}  // namespace
}  // namespace orvex
