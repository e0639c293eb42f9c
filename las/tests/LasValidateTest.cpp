#include "las/LasValidate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "las/testing/LasFiles.h"
#include "support/Text.h"

namespace orvex {

namespace {

using testing::LasBuilder;
using Codes = std::vector<std::string>;

class LasValidateTest : public ::testing::Test {
  protected:
    std::vector<Finding> Validate(const LasBuilder& builder) const {
        return ValidateLas(*folder_.Open(builder));
    }
    Codes CodesOf(const LasBuilder& builder) const {
        Codes codes;
        for (const Finding& finding : Validate(builder)) {
            EXPECT_FALSE(finding.text.empty());
            EXPECT_EQ(finding.text.find(L'#'), std::wstring::npos) << "no text for the finding";
            codes.push_back(finding.code);
        }
        return codes;
    }
    static LasBuilder Good(int version = 12, int format = 1) {
        return LasBuilder(version, format).AddPoints(10).ProjectedEpsg(25832);
    }

    const testing::LasFolder folder_{};
};

TEST_F(LasValidateTest, FindsNothingInGoodFiles) {
    for (const int version : {10, 11, 12, 13, 14}) {
        EXPECT_EQ(CodesOf(Good(version)), Codes()) << version;
    }
    EXPECT_EQ(CodesOf(LasBuilder(14, 6).AddPoints(3).Wkt("x", true).AddEvlr("copc", 1, "abc")), Codes());
    EXPECT_EQ(CodesOf(Good(10).Gap("\xDD\xCC")), Codes());
    EXPECT_EQ(CodesOf(Good(12).HeaderSize(300)), Codes());
    // The packets of external waveforms, as they are or compressed.
    for (const wchar_t* packets : {L"a.wdp", L"a.wdz"}) {
        const std::wstring path = folder_.Write(packets, "");
        EXPECT_EQ(CodesOf(Good(13).EncodingBits(4)), Codes()) << packets;
        std::filesystem::remove(ToPath(path));
    }
    // In LAS 1.2 the header ends before the start of waveforms, and their bits mean nothing.
    EXPECT_EQ(CodesOf(Good(12).HeaderSize(300).EncodingBits(6).Lie<std::uint64_t>(227, 99999)), Codes());
    // Counts by return that are not filled in, or leave out what is beyond the fifth.
    EXPECT_EQ(CodesOf(Good().Lie<std::uint32_t>(111, 0)), Codes());
    EXPECT_EQ(CodesOf(Good().Lie<std::uint32_t>(111, 8).Lie<std::uint32_t>(127, 1)), Codes());
    // A legacy count of 0 is how LAS 1.4 says "see the other one".
    EXPECT_EQ(CodesOf(Good(14, 6).EncodingBits(16)), Codes());
    // How long compressed points are does not follow from their count.
    EXPECT_EQ(CodesOf(Good().MarkCompressed().Cut(500)), Codes());
}

// Worst first, then by offset.
TEST_F(LasValidateTest, FindsWhatIsOdd) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const std::size_t size = Good().Build().size();
    const std::string descriptor = std::string(2, '\0') + '\1' + std::string(189, '\0');
    const struct {
        const char* what;
        LasBuilder builder;
        Codes codes;
    } cases[] = {
        {"signature", Good().Lie<std::uint8_t>(0, 'l'), {"signature-missing"}},
        {"version 1.9", Good().Lie<std::uint8_t>(25, 9), {"version-unknown"}},
        {"version 2.0", Good(20), {"version-2-0"}},
        {"1.4 with a short header",
         Good(14).HeaderSize(235),
         {"header-short-for-version", "legacy-count-mismatch", "no-points", "point-count-too-small"}},
        {"1.3 with a short header", Good(13).HeaderSize(227), {"header-short-for-version"}},
        {"offset beyond the end", Good().Lie<std::uint32_t>(96, 0xFFFFFFFF), {"points-beyond-end"}},
        {"points cut", Good().Cut(size - 1), {"points-truncated"}},
        {"points cut off", Good().Cut(size - 280), {"points-truncated"}},
        {"too large a count",
         Good().Lie<std::uint32_t>(107, 0xFFFFFFFF),
         {"points-truncated", "returns-mismatch"}},
        {"too small a count",
         Good().Lie<std::uint32_t>(107, 9),
         {"returns-mismatch", "point-count-too-small"}},
        {"bytes behind the points", Good().Append("abc"), {"bytes-after-points"}},
        {"points over EVLRs",
         Good(14).AddEvlr("a", 1, std::string(900, 'x')).Lie<std::uint64_t>(247, 11),
         {"points-truncated", "legacy-count-mismatch", "evlrs-inside-data", "returns-mismatch"}},
        {"two counts", Good(14).Lie<std::uint32_t>(107, 11), {"legacy-count-mismatch"}},
        {"format 11", Good().Lie<std::uint8_t>(104, 11), {"point-format-unknown"}},
        {"format 3 in 1.1", Good(11, 3), {"point-format-of-later-version"}},
        {"format 6 in 1.3",
         Good(13, 6).EncodingBits(16),
         {"point-format-of-later-version", "no-points", "point-count-too-small"}},
        {"no WKT bit", Good(14, 6).Lie<std::uint16_t>(6, 1), {"wkt-bit-missing"}},
        {"bytes without a descriptor", Good().Lie<std::uint8_t>(104, 0), {"extra-bytes-unexplained"}},
        {"short records", Good().Lie<std::uint8_t>(104, 3), {"point-record-too-short"}},
        {"no records", Good().Lie<std::uint16_t>(105, 0), {"point-record-too-short"}},
        {"scale 0", Good().Lie(139, 0.0), {"scale-zero"}},
        {"scale no number", Good().Lie(131, kNan), {"scale-not-finite"}},
        {"offset infinite", Good().Lie(171, -kInfinite), {"scale-not-finite"}},
        {"extent inverted", Good().Lie(187, 1e5), {"extent-inverted"}},
        {"extent beyond 32 bits", Good().Lie(179, 3e7), {"extent-beyond-scale"}},
        {"made in 2200", Good().CreationDate(365, 2200), {"created-in-future"}},
        {"returns too few", Good().Lie<std::uint32_t>(111, 9), {"returns-mismatch"}},
        {"returns too many",
         Good(14, 6).EncodingBits(16).Lie<std::uint64_t>(263, ~std::uint64_t{0}),
         {"returns-mismatch"}},
        {"both waveform bits", Good(13).EncodingBits(2 + 4), {"waveform-both-bits"}},
        {"no waveform file", Good(13).EncodingBits(4), {"waveform-file-missing"}},
        {"waveforms beyond the end",
         Good(13).EncodingBits(2).Lie<std::uint64_t>(227, 99999),
         {"waveform-beyond-end"}},
        {"EVLRs over the points",
         Good(14).AddEvlr("a", 1, "abc").Lie<std::uint64_t>(235, Good(14).Build().size() - 60),
         {"points-truncated", "evlrs-inside-data"}},
        {"EVLRs in the header",
         Good(14).AddEvlr("a", 1, "abc").Lie<std::uint64_t>(235, 300),
         {"evlrs-inside-data", "point-count-too-small"}},
        {"extent no number", Good().Lie(219, kNan), {"extent-not-finite"}},
        {"too many VLRs", Good().Lie<std::uint32_t>(100, 0xFFFFFFFF), {"vlr-count-mismatch"}},
        {"VLR into the points", Good().Lie<std::uint16_t>(227 + 20, 9000), {"vlr-truncated"}},
        {"EVLR beyond the end",
         Good(14).AddEvlr("a", 1, "abc").Append("").Cut(Good(14).Build().size() + 61),
         {"evlr-truncated"}},
        {"no points", LasBuilder(12, 1).ProjectedEpsg(4326), {"no-points"}},
        {"day 366 of a common year", Good().CreationDate(366, 2023), {"creation-date-impossible"}},
        {"day 366 of a leap year", Good().CreationDate(366, 2024), {}},
        {"year 40000", Good().CreationDate(12, 40000), {"creation-date-impossible"}},
        {"a day without a year", Good().CreationDate(12, 0), {"creation-date-impossible"}},
        {"years since 1900", Good().CreationDate(12, 107), {"creation-date-impossible"}},
        {"no date", Good().CreationDate(0, 0), {}},
        {"extra bytes in two records",
         Good().AddVlr("LASF_Spec", 4, descriptor).AddVlr("LASF_Spec", 4, descriptor),
         {"extra-bytes-spread", "extra-bytes-beyond-record"}},
        {"descriptors without bytes",
         Good().AddVlr("LASF_Spec", 4, descriptor + descriptor),
         {"extra-bytes-beyond-record"}},
        {"no CRS", LasBuilder(12, 1).AddPoints(1), {"no-crs"}},
        {"header size 0",
         Good().Lie<std::uint16_t>(94, 0),
         {"header-too-short", "vlr-count-mismatch", "no-crs"}},
        {"offset 0",
         Good().Lie<std::uint32_t>(96, 0),
         {"points-inside-header", "vlr-count-mismatch", "point-count-too-small", "no-crs"}},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(CodesOf(expected.builder), expected.codes) << expected.what;
    }
}

}  // namespace
}  // namespace orvex
