// GPS time and UTC. The pairs are published ones: starts of GPS weeks, GPS seconds around leap seconds.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "orvexcommon/Geocoding.h"

namespace {

constexpr double kAdjustment = 1e9;

TEST(TimeConverterTest, GivesUtcOfGpsTimes) {
    ASSERT_TRUE(TimeConverter::Init());
    const struct {
        double gps;
        const char* utc;
    } rows[] = {
        {0, "1980-01-06 00:00:00.000"},
        {46828799, "1981-06-30 23:59:59.000"},
        {46828800, "1981-06-30 23:59:60.000"},
        {46828801, "1981-07-01 00:00:00.000"},
        // Start of GPS week 1024, the first rollover of the week number, and of week 2048, the second.
        {619315200, "1999-08-21 23:59:47.000"},
        {1238630400, "2019-04-06 23:59:42.000"},
        {1e9, "2011-09-14 01:46:25.000"},
        {1167264016, "2016-12-31 23:59:59.000"},
        {1167264017, "2016-12-31 23:59:60.000"},
        {1167264017.75, "2016-12-31 23:59:60.750"},
        {1167264018, "2017-01-01 00:00:00.000"},
        {1247131311.25, "2019-07-14 09:21:33.250"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(row.gps - kAdjustment, true), row.utc);
        EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(row.gps - kAdjustment, false), std::string(row.utc, 19));
        double adjusted = 0;
        ASSERT_TRUE(TimeConverter::UTCToAdjGPSSecs(row.utc, adjusted)) << row.utc;
        EXPECT_NEAR(adjusted + kAdjustment, row.gps, 1e-6) << row.utc;
    }
}

TEST(TimeConverterTest, CutsSecondsOffWithoutLosingOneToRounding) {
    double adjusted = 0;
    ASSERT_TRUE(TimeConverter::UTCToAdjGPSSecs("2024-02-29 12:00:33", adjusted));
    EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(adjusted + 0.999, false), "2024-02-29 12:00:33");
    EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(adjusted - 1e-8, true), "2024-02-29 12:00:33.000");
    EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(adjusted + 0.1, true), "2024-02-29 12:00:33.100");
}

TEST(TimeConverterTest, RefusesWhatIsNoTime) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double seconds :
         {-kAdjustment - 1, 1e300, kInfinity, -kInfinity, 3e11, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(TimeConverter::AdjGPSSecsToUTC(seconds, true), "") << seconds;
    }
    double adjusted = 0;
    for (const char* utc :
         {"", "2019", "2019-02-30 00:00:00", "2019-01-01 24:00:00", "2019-01-01 00:00:61",
          "1979-12-31 00:00:00", "2019-01-01 00:00:00.", "2019-01-01 00:00:00x", "2019-01-01 00:00:00.5x"}) {
        EXPECT_FALSE(TimeConverter::UTCToAdjGPSSecs(utc, adjusted)) << utc;
    }
}

}  // namespace
