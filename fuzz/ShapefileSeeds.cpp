#include "feature/testing/TestShapefile.h"
#include "fuzz/Seeds.h"
#include "support/testing/Bytes.h"

namespace orvex::fuzz {
namespace {

using orvex::testing::Bytes;
using orvex::testing::TestShapefile;

std::string Packed(const std::string& shp, const std::string& shx, const std::string& dbf) {
    return Bytes(static_cast<std::uint16_t>(shp.size()), static_cast<std::uint16_t>(shx.size())) + shp + shx +
           dbf;
}

}  // namespace

// Shapefiles as they should be, with sidecars of each other, and cut off.
std::vector<std::string> Seeds() {
    TestShapefile many;
    many.type = 11;
    many.points.resize(100, {1, 2});
    many.fields = {{"GR\xD6SSE", 'F', 13, 6}, {"", 'D', 8}, {"M", 'M', 10}};
    many.languageDriver = 88;
    TestShapefile none;
    none.points.clear();
    std::vector<std::string> seeds{"", std::string(500, '\0'), std::string(500, '\xFF')};
    const std::vector<TestShapefile> files{TestShapefile(), many, none};
    for (const TestShapefile& file : files) {
        for (const TestShapefile& other : files) {
            seeds.push_back(Packed(file.Shp(), other.Shx(), other.Dbf()));
        }
        seeds.push_back(
            Packed(file.Shp().substr(0, 130), file.Shx().substr(0, 101), file.Dbf().substr(0, 70)));
    }
    return seeds;
}

}  // namespace orvex::fuzz
