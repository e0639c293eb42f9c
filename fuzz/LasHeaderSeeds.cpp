#include "fuzz/Seeds.h"
#include "host/utilities/testing/LazSamples.h"
#include "las/testing/LasFiles.h"

namespace orvex::fuzz {

using orvex::testing::LasBuilder;

// Every version and kind of record once, and the lies that once caused trouble somewhere.
std::vector<std::string> Seeds() {
    std::vector<std::string> seeds{"",
                                   "LASF",
                                   std::string(227, '\0'),
                                   std::string(400, '\xFF'),
                                   testing::RichLas().Build(),
                                   testing::RichLas().MarkCompressed().Build()};
    for (const LasBuilder& builder : testing::LyingLasFiles()) {
        seeds.push_back(builder.Build());
    }
    for (const int version : {10, 11, 12, 13, 14, 20}) {
        seeds.push_back(LasBuilder(version, 1).AddPoints(2).AddVlr("any", 1, "data").Gap("\xDD\xCC").Build());
    }
    const testing::TemporaryFolder folder;
    for (const std::uint8_t format : {std::uint8_t{1}, std::uint8_t{6}}) {
        const std::wstring path = folder.Name(L"seed.laz");
        testing::WriteSample(path,
                             {.versionMinor = 4,
                              .pointFormat = format,
                              .recordLength = las::kPointFormats[format].minimumLength,
                              .points = 9},
                             true);
        seeds.push_back(testing::ReadFile(path));
    }
    seeds.push_back(testing::RichLas().Wkt("PROJCS[\"cut").Build());
    return seeds;
}

}  // namespace orvex::fuzz
