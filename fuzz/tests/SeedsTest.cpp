// Built once for each fuzzer.
#include "fuzz/Seeds.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

TEST(Fuzz, TakesItsSeeds) {
    for (const std::string& seed : orvex::fuzz::Seeds()) {
        EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(seed.data()), seed.size()), 0);
    }
}

}  // namespace
