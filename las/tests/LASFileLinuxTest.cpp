#include <gtest/gtest.h>

#include "las/testing/LasFiles.h"

namespace orvex {
namespace {

TEST(LASFileOnLinux, TellsAReadErrorFromAShortFile) {
    // A file that opens, but whose first bytes are nobody's memory.
    const std::wstring failure = testing::FailureToOpen(L"/proc/self/mem");
    EXPECT_TRUE(failure.starts_with(L"The header of '/proc/self/mem' could not be read."));
}

}  // namespace
}  // namespace orvex
