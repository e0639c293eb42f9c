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

    const testing::LasFolder folder_;
};

std::ptrdiff_t Lines(const std::wstring& text) {
    return std::ranges::count(text, L'\n');
}

TEST_F(LasTextTest, ShowsFieldsAndBytes) {
    EXPECT_EQ(VlrText(LasBuilder()
                          .AddVlr("somebody", 7, "\x01\x7f\x80\xff\x10 AB", "eight bytes", 43707)
                          .AddVlr("LASF_Projection", 2112, "PROJCS[]", "OGC WKT")
                          .AddVlr("b", 65535, "xyz")),
              L"Reserved                   = 43707\n"
              L"User ID                    = somebody\n"
              L"Record ID                  = 7\n"
              L"Record Length After Header = 8\n"
              L"Description                = eight bytes\n"
              L"01 7f 80 ff 10 20 41 42 \n"
              L"Reserved                   = 0\n"
              L"User ID                    = LASF_Projection\n"
              L"Record ID                  = 2112\n"
              L"Record Length After Header = 8\n"
              L"Description                = OGC WKT\n"
              L"Reserved                   = 0\n"
              L"User ID                    = b\n"
              L"Record ID                  = 65535\n"
              L"Record Length After Header = 3\n"
              L"Description                = \n"
              L"78 79 7a ");
    EXPECT_EQ(VlrText(LasBuilder()), L"");
}

TEST_F(LasTextTest, DumpsUpTo256Bytes) {
    const auto linesOf = [&](std::size_t length) {
        return Lines(VlrText(LasBuilder().AddVlr("a", 1, std::string(length, 'x'))));
    };
    EXPECT_EQ(linesOf(255), 5 + 31) << "the last line has seven bytes and no end";
    EXPECT_EQ(linesOf(256), 5 + 32);
    EXPECT_EQ(linesOf(257), 5);
}

TEST_F(LasTextTest, EndsLongLists) {
    LasBuilder builder;
    const auto add = [&](int count) {
        for (int i = 0; i < count; ++i) {
            builder.AddVlr("a", 1, "");
        }
        return VlrText(builder);
    };
    EXPECT_EQ(Lines(add(9)), 45);
    EXPECT_EQ(Lines(add(1)), 50);
    const std::wstring eleven = add(1);
    EXPECT_EQ(Lines(eleven), 55 + 3);
    EXPECT_TRUE(eleven.ends_with(L"...\n...\n...\n... VLR size exceeds display size"));
    EXPECT_EQ(add(20), eleven);
    // The lines of bytes count as well.
    const std::wstring dumped = VlrText(LasBuilder()
                                            .AddVlr("a", 1, std::string(256, 'x'))
                                            .AddVlr("b", 2, std::string(80, 'x'))
                                            .AddVlr("c", 3, ""));
    EXPECT_EQ(Lines(dumped), 37 + 15 + 3);
    EXPECT_TRUE(dumped.ends_with(L"... VLR size exceeds display size"));
}

TEST_F(LasTextTest, ShowsEvlrsAlike) {
    LasBuilder builder(14, 6);
    builder.AddEvlr("Kst", 1, "\x01\x02", "kept").AddEvlr("other", 2, "\x01\x02", "skipped");
    EXPECT_EQ(EvlrText(builder),
              L"Reserved                   = 0\n"
              L"User ID                    = Kst\n"
              L"Record ID                  = 1\n"
              L"Record Length After Header = 2\n"
              L"Description                = kept\n"
              L"01 02 Reserved                   = 0\n"
              L"User ID                    = other\n"
              L"Record ID                  = 2\n"
              L"Record Length After Header = 2\n"
              L"Description                = skipped\n");
    for (int i = 0; i < 10; ++i) {
        builder.AddEvlr("other", 3, "");
    }
    EXPECT_TRUE(EvlrText(builder).ends_with(L"...\n... EVLR size exceeds display size"));
    // A length of any size is shown, and only what is held is dumped.
    const std::wstring huge =
        EvlrText(LasBuilder(14, 6).AddEvlr("x", 1, "").Lie<std::uint64_t>(375 + 20, 5000000000));
    EXPECT_NE(huge.find(L"= 5000000000\n"), std::wstring::npos);
}

TEST_F(LasTextTest, NamesTheKindOfGpsTime) {
    const std::wstring none = Text(13490_lsid);
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
