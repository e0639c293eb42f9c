#include "crs/ExtentFindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Which causes are guessed is told with the files, whose extents these are.
TEST(ExtentFindings, NoCrsHoldsNumbersThisLarge) {
    const struct {
        int epsg;  ///< 0: no CRS
        std::array<double, 3> low, high;
        const char* code = "";
        const wchar_t* axes = L"";
    } cases[] = {
        {0, {0, 0, 0}, {0, 0, 0}},
        {0, {-25.8, -16, 0}, {211, 81, 5}},
        {0, {-2e7, -2e7, -11'000}, {2e7, 2e7, 9000}},
        {0, {32'500'000, 5'400'000, 0}, {32'501'000, 5'401'000, 5}},
        {0, {-235'434'519, 0, 0}, {-235'434'000, 5, 5}, "extent-impossible", L"X"},
        {0, {0, 1e246, 0}, {5, -8e191, 1e9}, "extent-impossible", L"Y, Z"},
        {0, {kNan, 0, 0}, {5, kNan, -std::numeric_limits<double>::infinity()}},
        {25832, {500'000, 5'400'000, -3e38}, {500'100, 5'400'100, 5}, "extent-impossible", L"Z"},
        {25832, {-3e9, 5'400'000, 0}, {500'100, 5'400'100, 5}, "extent-impossible", L"X"},
        {25832, {-3e9, 0, 0}, {-2e9, 5, 5}, "extent-outside-crs"},
        {4326, {-180, -90, 0}, {180, 90, 5}},
        {4326, {0, -90, 0}, {359.75, 90, 5}},
        {4326, {7, 50, 0}, {700, 51, 5}, "extent-outside-crs"},
        {4326, {1, 1, 0}, {226, 100.5, 5}, "extent-outside-crs"},
        {4326, {7, 50, -1e9}, {8, 51, 5}, "extent-impossible", L"Z"},
        {4326, {700, 5000, 0}, {701, 5001, 5}, "extent-outside-crs"},
    };
    for (const auto& c : cases) {
        const CrsPtr crs =
            DescribeCrs(c.epsg == 0 ? std::string() : OrvexUtilities::CrsGetPrettyWktFromEPSG(c.epsg));
        const std::optional<Finding> found = CheckExtent(*crs, c.low, c.high);
        EXPECT_STREQ(found ? found->code : "", c.code) << c.epsg << ' ' << c.low[0];
        if (found && *c.axes != L'\0') {
            EXPECT_EQ(found->text, FormatText(Text(text::kExtentImpossible), {c.axes}));
        }
    }
}

}  // namespace
}  // namespace orvex
