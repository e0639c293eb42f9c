#include "fuzz/Seeds.h"

#include <cstdint>

#include "las/testing/LasBuilder.h"

namespace orvex::fuzz {

using orvex::testing::LasBuilder;

// Every version and kind of record once, and the lies that once were trouble somewhere.
std::vector<std::string> Seeds() {
    const LasBuilder rich = LasBuilder(14, 6)
                                .AddPoints(3)
                                .AddExtraBytes("reflectance", 10, 8)
                                .AddExtraBytes("raw", 0, 3)
                                .ProjectedEpsg(25832)
                                .Wkt("GEOGCS[\"WGS 84\"]", true)
                                .AddEvlr("Kst", 5, "own data")
                                .AddEvlr("copc", 1000, "pages");
    constexpr std::uint32_t kMost32 = 0xFFFFFFFF;
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    std::vector<std::string> seeds{
        "",
        "LASF",
        std::string(227, '\0'),
        std::string(400, '\xFF'),
        rich.Build(),
        LasBuilder(rich).MarkCompressed().Build(),
        LasBuilder(rich).Lie(94, std::uint16_t{0}).Build(),
        LasBuilder(rich).Lie(94, std::uint16_t{65535}).Build(),
        LasBuilder(rich).Lie(96, kMost32).Build(),
        LasBuilder(rich).Lie(100, kMost32).Build(),
        LasBuilder(rich).Lie(105, std::uint16_t{0}).Build(),
        LasBuilder(rich).Lie(235, kMost - 5).Build(),
        LasBuilder(rich).Lie(243, kMost32).Build(),
        LasBuilder(rich).Lie(247, kMost).Build(),
    };
    for (const int version : {10, 11, 12, 13, 14, 20}) {
        seeds.push_back(LasBuilder(version, 1).AddPoints(2).AddVlr("any", 1, "data").Gap("\xDD\xCC").Build());
    }
    return seeds;
}

}  // namespace orvex::fuzz
