#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <random>
#include <vector>

#include "orvexcommon/OrvexUtilities.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;

using Key = std::vector<std::uint16_t>;  // id, location, count, value

template <typename T>
std::string Payload(const std::vector<T>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(T)};
}

std::string Directory(const std::vector<Key>& keys, int announced = -1) {
    const std::size_t count = announced < 0 ? keys.size() : static_cast<std::size_t>(announced);
    std::vector<std::uint16_t> numbers = {1, 1, 0, static_cast<std::uint16_t>(count)};
    for (const Key& key : keys) {
        numbers.insert(numbers.end(), key.begin(), key.end());
    }
    return Payload(numbers);
}

const Key kProjected = {1024, 0, 1, 1};
const Key kUtm32 = {3072, 0, 1, 25832};

TEST(GeoKeys, BecomeAWkt) {
    const struct {
        const char* what;
        std::vector<Key> keys;
        std::vector<double> doubles;
        std::string text;
        const char* expected;
    } cases[] = {
        {"projected", {kProjected, kUtm32}, {}, "", R"(AUTHORITY["EPSG","25832"]])"},
        {"geographic", {{1024, 0, 1, 2}, {2048, 0, 1, 4326}}, {}, "", R"(AUTHORITY["EPSG","4326"]])"},
        {"with heights", {kProjected, kUtm32, {4096, 0, 1, 5703}}, {}, "", R"(VERT_CS["NAVD88 height")"},
        {"user-defined",
         {kProjected,
          {2048, 0, 1, 4326},
          {3072, 0, 1, 32767},
          {3073, 34737, 8, 0},
          {3074, 0, 1, 32767},
          {3075, 0, 1, 1},
          {3076, 0, 1, 9001},
          {3080, 34736, 1, 1},
          {3081, 34736, 1, 0},
          {3092, 34736, 1, 2}},
         {10.5, 11.25, 0.9998},
         "My zone|",
         R"(PARAMETER["central_meridian",11.25])"},
        {"unused keys are left out",
         {kProjected, kUtm32, {0, 0, 0, 0}, {65535, 0, 1, 1}, {3073, 34737, 500, 0}},
         {},
         "",
         R"(AUTHORITY["EPSG","25832"]])"},
    };
    for (const auto& row : cases) {
        std::string reason;
        EXPECT_THAT(
            OrvexUtilities::CrsWktFromGeoKeys(Directory(row.keys), Payload(row.doubles), row.text, reason),
            HasSubstr(row.expected))
            << row.what;
        EXPECT_EQ(reason, "") << row.what;
    }
}

TEST(GeoKeys, ThatCannotBeUsedGiveNothingAndSayWhy) {
    const struct {
        const char* what;
        std::string directory;
    } cases[] = {
        {"nothing", ""},
        {"three bytes", "abc"},
        {"announces keys that are not there", Directory({}, 65535)},
        {"an unknown code", Directory({kProjected, {3072, 0, 1, 31}})},
        {"numbers beyond their record", Directory({{2057, 34736, 3, 65535}})},
        {"text beyond its record", Directory({{1026, 34737, 65535, 65535}})},
        {"a number where a text belongs", Directory({{1026, 0, 1, 5}, {2049, 34736, 1, 0}})},
        {"a text where a number belongs", Directory({{3072, 34737, 4, 0}, {1024, 34737, 1, 0}})},
        {"an unknown place", Directory({{3072, 12345, 1, 0}})},
        {"the directory as a place", Directory({{3072, 34735, 60000, 1}})},
    };
    for (const auto& row : cases) {
        std::string reason;
        EXPECT_EQ(OrvexUtilities::CrsWktFromGeoKeys(row.directory, Payload<double>({1, 2}), "text|", reason),
                  "")
            << row.what;
        EXPECT_NE(reason, "") << row.what;
    }
}

TEST(GeoKeys, ThatNameNoCrsAreNotDamaged) {
    for (const std::string& directory :
         {Directory({}), Directory({{1025, 0, 1, 2}, {3076, 0, 1, 9001}, {4099, 0, 1, 9001}})}) {
        std::string reason;
        EXPECT_EQ(OrvexUtilities::CrsWktFromGeoKeys(directory, "", "", reason), "");
        EXPECT_EQ(reason, "");
    }
}

TEST(GeoKeys, RandomRecordsDoNoHarm) {
    std::mt19937 random(20240607);  // the same records in every run
    const std::vector<std::uint16_t> ids = {1024, 1025, 1026, 2048, 2049, 2050, 2052, 2054, 2057, 2062, 3072,
                                            3073, 3074, 3075, 3076, 3078, 3080, 3092, 4096, 4097, 4099, 5120};
    const std::vector<std::uint16_t> places = {0, 0, 34736, 34737, 34735};
    for (int round = 0; round < 300; ++round) {
        std::vector<Key> keys;
        for (std::size_t i = 0; i < random() % 12; ++i) {
            keys.push_back({ids[random() % ids.size()], places[random() % places.size()],
                            static_cast<std::uint16_t>(random() % 5),
                            static_cast<std::uint16_t>(random() % 40000)});
        }
        std::vector<double> doubles(random() % 4);
        for (double& value : doubles) {
            value = std::bit_cast<double>((std::uint64_t{random()} << 32) | random());
        }
        std::string directory = Directory(keys, static_cast<int>(random() % 16));
        directory.resize(directory.size() - random() % 3 % directory.size());
        std::string reason;
        OrvexUtilities::CrsWktFromGeoKeys(directory, Payload(doubles), std::string(random() % 9, 'x'),
                                          reason);
    }
    EXPECT_EQ(CPLStringList(VSIReadDir("/vsimem/")).size(), 0) << "files left in memory";
}

}  // namespace
}  // namespace orvex
