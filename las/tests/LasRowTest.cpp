#include "las/LasRow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "las/testing/LasBuilder.h"
#include "support/Environment.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::LasBuilder;

constexpr const char* kWgs84 =
    R"(GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],)"
    R"(UNIT["degree",0.0174532925199433],AUTHORITY["EPSG","4326"]])";

class LasRowTest : public ::testing::Test {
  protected:
    LasRow Inspect(const LasBuilder& builder) const {
        return InspectLasFile(folder_.Write(L"a.las", builder.Build()));
    }
    static bool Has(const LasRow& row, LasFindingCode code) {
        return std::ranges::any_of(row.findings, [code](const auto& f) { return f.code == code; });
    }

    const testing::TemporaryFolder folder_;
};

TEST_F(LasRowTest, ChoosesTheCrsByTheWktBit) {
    const LasBuilder keys = LasBuilder(14, 6).AddPoints(2).ProjectedEpsg(25832);
    const struct {
        const char* what;
        LasBuilder builder;
        const wchar_t* name;
        bool isUnreadable;
    } cases[] = {
        {"keys", keys, L"ETRS89 / UTM zone 32N", false},
        {"keys and WKT, no bit", LasBuilder(keys).Wkt(kWgs84).Lie<std::uint16_t>(6, 0),
         L"ETRS89 / UTM zone 32N", false},
        {"keys and WKT, bit", LasBuilder(keys).Wkt(kWgs84), L"WGS 84", false},
        {"WKT, no bit", LasBuilder(14, 6).AddPoints(2).Wkt(kWgs84).Lie<std::uint16_t>(6, 0), L"WGS 84",
         false},
        {"WKT in an EVLR", LasBuilder(keys).Wkt(kWgs84, true), L"WGS 84", false},
        {"padded WKT", LasBuilder(14, 6).AddPoints(2).Wkt(std::string(kWgs84) + " \r\n"), L"WGS 84", false},
        {"bit but no WKT", LasBuilder(keys).EncodingBits(16), L"ETRS89 / UTM zone 32N", false},
        {"empty WKT", LasBuilder(keys).Wkt(""), L"ETRS89 / UTM zone 32N", false},
        {"empty keys", LasBuilder(14, 6).AddPoints(2).GeoKeys({}).Wkt(kWgs84).Lie<std::uint16_t>(6, 0),
         L"WGS 84", false},
        {"garbage WKT", LasBuilder(14, 6).AddPoints(2).Wkt("no WKT at all"), L"", true},
        {"keys that promise more", LasBuilder(14, 6).AddPoints(2).GeoKeys({1, 1, 0, 65535}), L"", true},
        {"nothing but an empty WKT", LasBuilder(14, 6).AddPoints(2).Wkt(""), L"", false},
        {"none", LasBuilder(14, 6).AddPoints(2), L"", false},
    };
    for (const auto& expected : cases) {
        const LasRow found = Inspect(expected.builder);
        ASSERT_TRUE(found.loadable) << expected.what;
        EXPECT_EQ(found.crs->name, expected.name) << expected.what;
        EXPECT_EQ(Has(found, LasFindingCode::CrsUnreadable), expected.isUnreadable) << expected.what;
        EXPECT_EQ(Has(found, LasFindingCode::NoCrs), found.crs->name.empty() && !expected.isUnreadable)
            << expected.what;
    }
}

TEST_F(LasRowTest, PutsTheWorstFindingIntoTheSummary) {
    const LasRow odd = Inspect(LasBuilder(12, 1).AddPoints(5).Lie(131, 0.0).Lie<std::uint32_t>(107, 9));
    EXPECT_TRUE(odd.loadable);
    EXPECT_EQ(odd.summary,
              L"The file is truncated by 4 points: its header counts 9 points, the file holds 5.");
    EXPECT_EQ(odd.findings.size(), 3U);
    EXPECT_EQ(odd.findings[1].code, LasFindingCode::ScaleZero);
    EXPECT_EQ(odd.findings[2].code, LasFindingCode::NoCrs);
    // A note alone is nothing to worry about.
    EXPECT_EQ(Inspect(LasBuilder(12, 1).AddPoints(5)).summary, L"OK");
}

TEST_F(LasRowTest, SaysWhyAFileCannotBeLoaded) {
    const std::wstring folder = FromPath(folder_.Path());
    const struct {
        std::wstring path;
        std::wstring summary;
    } cases[] = {
        {L"", L"'' file does not exist. Cannot open."},
        {folder, L"'" + folder + L"' file does not exist. Cannot open."},
        {folder_.Write(L"text.las", std::string(300, 't')),
         L"'" + folder_.Name(L"text.las") + L"' is not a LAS file: it does not begin with \"LASF\"."},
    };
    for (const auto& expected : cases) {
        const LasRow found = InspectLasFile(expected.path);
        EXPECT_FALSE(found.loadable);
        EXPECT_EQ(found.summary, expected.summary);
        EXPECT_EQ(found.path, expected.path);
        EXPECT_EQ(found.file, nullptr);
        ASSERT_NE(found.crs, nullptr);
    }
}

TEST_F(LasRowTest, WorksFromManyThreads) {
    std::vector<std::wstring> paths;
    for (int i = 0; i < 12; ++i) {
        const auto code = static_cast<std::uint16_t>(25828 + i % 6);
        paths.push_back(folder_.Write(std::to_wstring(i) + L".las",
                                      LasBuilder().AddPoints(2).ProjectedEpsg(code).Build()));
    }
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&paths] {
            for (std::size_t i = 0; i < paths.size(); ++i) {
                EXPECT_EQ(InspectLasFile(paths[i]).crs->epsg, static_cast<long>(25828 + i % 6));
            }
        });
    }
}

/// Every LAS and LAZ file below the folder that ORVEX_SAMPLE_DATA names. One that fails says why; those in a
/// folder "broken" may fail for any reason, others for their old extra-bytes types only.
TEST(LasSamples, AreRead) {
    const auto root = EnvironmentVariable(L"ORVEX_SAMPLE_DATA");
    if (!root) {
        GTEST_SKIP() << "ORVEX_SAMPLE_DATA names no folder of sample files";
    }
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ToPath(*root))) {
        const std::wstring path = FromPath(entry.path());
        const std::wstring extension = UpperExtensionOf(path);
        if (extension != L".LAS" && extension != L".LAZ") {
            continue;
        }
        ++count;
        const LasRow found = InspectLasFile(path);
        EXPECT_FALSE(found.summary.empty()) << entry.path();
        const bool hasOldType = found.summary.starts_with(L"GetExtraByteOffsets: ");
        EXPECT_TRUE(found.loadable || hasOldType || entry.path().parent_path().filename() == "broken")
            << entry.path();
    }
    EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace orvex
