#include "las/LasText.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "las/testing/LasFiles.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::LasBuilder;

class LasTextTest : public ::testing::Test {
  protected:
    std::wstring VlrText(const LasBuilder& builder) const { return LasVlrText(*folder_.Open(builder)); }
    std::wstring EvlrText(const LasBuilder& builder) const { return LasEvlrText(*folder_.Open(builder)); }

    const testing::LasFolder folder_{};
};

std::wstring Fields(const std::wstring& reserved, const std::wstring& userId, const std::wstring& recordId,
                    const std::wstring& length, const std::wstring& description) {
    return L"Reserved                   = " + reserved + L"\nUser ID                    = " + userId +
           L"\nRecord ID                  = " + recordId + L"\nRecord Length After Header = " + length +
           L"\nDescription                = " + description + L"\n";
}

TEST_F(LasTextTest, ShowsFieldsAndBytes) {
    EXPECT_EQ(VlrText(LasBuilder()
                          .AddVlr("sixteen letters!", 7, "\x01\x7f\x80\xff\x10 AB",
                                  "a description of thirty-two char", 43707)
                          .AddVlr("LASF_Projection", 2112, "PROJCS[]", "OGC WKT")
                          .AddVlr("b", 65535, "xyz")),
              Fields(L"43707", L"sixteen letters!", L"7", L"8", L"a description of thirty-two char") +
                  L"01 7f 80 ff 10 20 41 42 \n" +
                  Fields(L"0", L"LASF_Projection", L"2112", L"8", L"OGC WKT") +
                  Fields(L"0", L"b", L"65535", L"3", L"") + L"78 79 7a ");
    EXPECT_EQ(VlrText(LasBuilder()), L"");
    EXPECT_EQ(EvlrText(LasBuilder(14, 6)
                           .AddEvlr("Kst", 1, "\x01\x02", "kept")
                           .AddEvlr("other", 2, "\x01\x02", "skipped")),
              Fields(L"0", L"Kst", L"1", L"2", L"kept") + L"01 02 " +
                  Fields(L"0", L"other", L"2", L"2", L"skipped"));
    EXPECT_EQ(EvlrText(LasBuilder(14, 6).AddEvlr("x", 1, "").Lie<std::uint64_t>(375 + 20, 5000000000)),
              Fields(L"0", L"x", L"1", L"5000000000", L""));
}

// Lines of bytes count as well; the last one of 255 bytes has seven and no end. More than 256 are not shown.
TEST_F(LasTextTest, EndsLongDataAndLongLists) {
    const struct {
        std::vector<std::size_t> lengths;
        std::ptrdiff_t lines;
    } cases[] = {{{255}, 5 + 31},
                 {{256}, 5 + 32},
                 {{257}, 5},
                 {std::vector<std::size_t>(9), 45},
                 {std::vector<std::size_t>(10), 50},
                 {std::vector<std::size_t>(11), 55 + 3},
                 {std::vector<std::size_t>(31), 55 + 3},
                 {{256, 80, 0}, 37 + 15 + 3}};
    for (const auto& c : cases) {
        LasBuilder vlrs;
        LasBuilder evlrs(14, 6);
        for (const std::size_t length : c.lengths) {
            vlrs.AddVlr("a", 1, std::string(length, 'x'));
            evlrs.AddEvlr("Kst", 1, std::string(length, 'x'));
        }
        for (const auto& [text, kind] : {std::pair(VlrText(vlrs), L" VLR"), {EvlrText(evlrs), L" EVLR"}}) {
            EXPECT_EQ(std::ranges::count(text, L'\n'), c.lines);
            const std::wstring end =
                L"\n...\n...\n...\n..." + std::wstring(kind) + L" size exceeds display size";
            EXPECT_EQ(text.ends_with(end), c.lines > 50) << c.lines;
        }
    }
}

TEST_F(LasTextTest, NamesTheKindOfGpsTime) {
    const std::wstring none = Text(text::kNoGpsTime);
    const std::wstring standard = L"Standard GPS Time";
    const std::wstring week = L"GPS-Week-Seconds";
    const struct {
        int version, format, bits;
        std::wstring text;
    } cases[] = {{10, 1, 1, L""},       {11, 1, 1, L""},  {20, 1, 1, L""},      {12, 0, 1, none},
                 {12, 2, 0, none},      {12, 2, 1, none}, {12, 1, 1, standard}, {12, 3, 0, week},
                 {14, 6, 17, standard}, {14, 6, 16, week}};
    for (const auto& c : cases) {
        LasBuilder builder(c.version, c.format);
        builder.EncodingBits(c.bits);
        EXPECT_EQ(LasGpsTimeText(*folder_.Open(builder)), c.text) << c.version << " " << c.format;
        EXPECT_EQ(LasGpsTimeText(*folder_.Open(builder.MarkCompressed())), c.text)
            << c.version << " " << c.format;
    }
}

}  // namespace
}  // namespace orvex
