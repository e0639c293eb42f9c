// Odd answers of other hosts' objects; the round trip of this host's is in RasterInformationTest.
#include "support/com/RasterDetailItems.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace orvex {
namespace {

using Items = std::map<std::pair<std::wstring, std::int32_t>, SettingValue>;

RasterProperties Read(Items items, std::int32_t bands = 0) {
    items.try_emplace({L"Driver", 0}, L"X");
    RasterProperties properties;
    properties.bands = bands;
    ReadRasterDetails(
        [&](std::wstring_view name, std::int32_t index) {
            const auto found = items.find({std::wstring(name), index});
            return found == items.end() ? SettingValue() : found->second;
        },
        properties);
    return properties;
}

TEST(RasterDetailItems, NumbersOfEveryTypeAreTakenWhereTheyFit) {
    const struct {
        SettingValue value;
        std::int32_t points;
        std::uint64_t bytes;
        bool rpc;
    } cases[] = {
        {std::int32_t{70000}, 70000, 70000, true},
        {70000.0, 70000, 70000, true},
        {1e12, 0, 1000000000000, true},
        {-1e300, 0, 0, true},
        {std::numeric_limits<double>::quiet_NaN(), 0, 0, true},
        {std::numeric_limits<double>::infinity(), 0, 0, true},
        {std::int16_t{0}, 0, 0, false},
        {L"5", 0, 0, false},
        {std::monostate(), 0, 0, false},
    };
    for (const auto& c : cases) {
        const auto name = ::testing::Message() << &c - cases;
        const RasterProperties read = Read(
            {{{L"ControlPoints", 0}, c.value}, {{L"TotalBytes", 0}, c.value}, {{L"HasRpc", 0}, c.value}});
        EXPECT_EQ(read.controlPoints, c.points) << name;
        EXPECT_EQ(read.totalBytes, c.bytes) << name;
        EXPECT_EQ(read.hasRpc, c.rpc) << name;
    }
}

TEST(RasterDetailItems, ATransformIsWholeOrNone) {
    Items items;
    for (std::int32_t i = 1; i <= 6; ++i) {
        items[{L"Transform", i}] = i * 1.5;
    }
    EXPECT_EQ(Read(items).transform, (std::array<double, 6>{1.5, 3, 4.5, 6, 7.5, 9}));
    items[{L"Transform", 6}] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(Read(items).transform.has_value());
    items.erase({L"Transform", 6});
    EXPECT_FALSE(Read(items).transform.has_value());
}

TEST(RasterDetailItems, AListWithoutAnEndEnds) {
    RasterProperties properties;
    properties.bands = std::numeric_limits<std::int32_t>::max();
    ReadRasterDetails([](std::wstring_view, std::int32_t) { return SettingValue(L"again"); }, properties);
    EXPECT_EQ(properties.sidecars.size(), 1000U);
    EXPECT_EQ(properties.warnings.size(), 1000U);
    EXPECT_EQ(properties.bandDetails->size(), kMostBandsDescribed);
}

TEST(RasterDetailItems, OddQuestionsAreNotAnswered) {
    RasterProperties properties;
    properties.driver = L"GTiff";
    properties.sidecars = {L"a"};
    properties.hasDetails = true;
    EXPECT_EQ(RasterDetail(properties, L"Sidecar", 1), SettingValue(L"a"));
    const struct {
        const wchar_t* name;
        std::int32_t index;
    } cases[] = {{L"", 0},
                 {L"Driver", -1},
                 {L"Sidecar", 0},
                 {L"Sidecar", 2},
                 {L"Bits", 1},
                 {L"Transform", 1},
                 {L"Sidecar", std::numeric_limits<std::int32_t>::min()}};
    for (const auto& c : cases) {
        EXPECT_EQ(RasterDetail(properties, c.name, c.index), SettingValue()) << c.name << c.index;
    }
}

}  // namespace
}  // namespace orvex
