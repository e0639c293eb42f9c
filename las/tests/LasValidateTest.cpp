#include "las/LasValidate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "las/testing/LasFiles.h"

namespace orvex {

// Readable failures.
void PrintTo(const LasFindingCode& code, std::ostream* out) {
    *out << "finding " << static_cast<int>(code);
}

namespace {

using testing::LasBuilder;
using Code = LasFindingCode;

class LasValidateTest : public ::testing::Test {
  protected:
    std::vector<LasFinding> Validate(const LasBuilder& builder) const {
        return ValidateLas(*folder_.Open(builder));
    }
    std::vector<Code> Codes(const LasBuilder& builder) const {
        std::vector<Code> codes;
        for (const LasFinding& finding : Validate(builder)) {
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
        EXPECT_EQ(Codes(Good(version)), std::vector<Code>()) << version;
    }
    EXPECT_EQ(Codes(LasBuilder(14, 6).AddPoints(3).Wkt("x", true).AddEvlr("copc", 1, "abc")),
              std::vector<Code>());
    EXPECT_EQ(Codes(Good(10).Gap("\xDD\xCC")), std::vector<Code>());
    EXPECT_EQ(Codes(Good(12).HeaderSize(300)), std::vector<Code>());
    // A legacy count of 0 is how LAS 1.4 says "see the other one".
    EXPECT_EQ(Codes(Good(14, 6)), std::vector<Code>());
    // How long compressed points are does not follow from their count.
    EXPECT_EQ(Codes(Good().MarkCompressed().Cut(500)), std::vector<Code>());
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
        std::vector<Code> codes;
    } cases[] = {
        {"signature", Good().Lie<std::uint8_t>(0, 'l'), {Code::SignatureMissing}},
        {"version 1.9", Good().Lie<std::uint8_t>(25, 9), {Code::UnknownVersion}},
        {"version 2.0", Good(20), {Code::UnknownVersion}},
        {"1.4 with a short header",
         Good(14).HeaderSize(235),
         {Code::HeaderSizeOdd, Code::CountMismatch, Code::NoPoints, Code::CountMismatch}},
        {"1.3 with a short header", Good(13).HeaderSize(227), {Code::HeaderSizeOdd}},
        {"offset beyond the end", Good().Lie<std::uint32_t>(96, 0xFFFFFFFF), {Code::OffsetBeyondEnd}},
        {"points cut", Good().Cut(size - 1), {Code::PointsTruncated}},
        {"points cut off", Good().Cut(size - 280), {Code::PointsTruncated}},
        {"too large a count", Good().Lie<std::uint32_t>(107, 0xFFFFFFFF), {Code::PointsTruncated}},
        {"too small a count", Good().Lie<std::uint32_t>(107, 9), {Code::CountMismatch}},
        {"bytes behind the points", Good().Append("abc"), {Code::BytesAfterPoints}},
        {"points over EVLRs",
         Good(14).AddEvlr("a", 1, std::string(900, 'x')).Lie<std::uint64_t>(247, 11),
         {Code::PointsTruncated, Code::CountMismatch}},
        {"two counts", Good(14).Lie<std::uint32_t>(107, 11), {Code::CountMismatch}},
        {"format 11", Good().Lie<std::uint8_t>(104, 11), {Code::UnknownPointFormat}},
        {"short records", Good().Lie<std::uint8_t>(104, 3), {Code::RecordLengthTooShort}},
        {"no records", Good().Lie<std::uint16_t>(105, 0), {Code::RecordLengthTooShort}},
        {"scale 0", Good().Lie(139, 0.0), {Code::ScaleZero}},
        {"scale no number", Good().Lie(131, kNan), {Code::ScaleNotFinite}},
        {"offset infinite", Good().Lie(171, -kInfinite), {Code::ScaleNotFinite}},
        {"extent inverted", Good().Lie(187, 1e9), {Code::ExtentInverted}},
        {"extent no number", Good().Lie(219, kNan), {Code::ExtentNotFinite}},
        {"too many VLRs", Good().Lie<std::uint32_t>(100, 0xFFFFFFFF), {Code::VlrCountTooHigh}},
        {"VLR into the points", Good().Lie<std::uint16_t>(227 + 20, 9000), {Code::VlrTruncated}},
        {"EVLR beyond the end",
         Good(14).AddEvlr("a", 1, "abc").Append("").Cut(Good(14).Build().size() + 61),
         {Code::EvlrTruncated}},
        {"no points", LasBuilder(12, 1).ProjectedEpsg(4326), {Code::NoPoints}},
        {"day 366 of a common year", Good().CreationDate(366, 2023), {Code::DateImpossible}},
        {"day 366 of a leap year", Good().CreationDate(366, 2024), {}},
        {"year 40000", Good().CreationDate(12, 40000), {Code::DateImpossible}},
        {"a day without a year", Good().CreationDate(12, 0), {Code::DateImpossible}},
        {"years since 1900", Good().CreationDate(12, 107), {Code::DateImpossible}},
        {"no date", Good().CreationDate(0, 0), {}},
        {"extra bytes in two records",
         Good().AddVlr("LASF_Spec", 4, descriptor).AddVlr("LASF_Spec", 4, descriptor),
         {Code::ExtraBytesSpread}},
        {"extra bytes in one record", Good().AddVlr("LASF_Spec", 4, descriptor + descriptor), {}},
        {"no CRS", LasBuilder(12, 1).AddPoints(1), {Code::NoCrs}},
        {"header size 0",
         Good().Lie<std::uint16_t>(94, 0),
         {Code::HeaderSizeOdd, Code::VlrCountTooHigh, Code::NoCrs}},
        {"offset 0",
         Good().Lie<std::uint32_t>(96, 0),
         {Code::OffsetInsideHeader, Code::VlrCountTooHigh, Code::CountMismatch, Code::NoCrs}},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(Codes(expected.builder), expected.codes) << expected.what;
    }
}

}  // namespace
}  // namespace orvex
