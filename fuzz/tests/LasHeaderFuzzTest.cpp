#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "fuzz/LasHeaderSeeds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

TEST(LasHeaderFuzz, ReadsItsSeeds) {
    for (const std::string& seed : orvex::fuzz::LasHeaderSeeds()) {
        EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(seed.data()), seed.size()), 0);
    }
}

}  // namespace
