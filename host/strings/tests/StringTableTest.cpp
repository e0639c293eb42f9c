#include "host/strings/StringTable.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(StringTable, ReadsTextsAndResolvesEscapes) {
    const StringTable table = ParseStringTable(
        "# id\tname\ttext\twhere\n"
        "7\tFirst line\\nsecond\\tcell \\\\n\tpage\n"
        "\n"
        "4294967295\tkLarger\tGrößer – ≥\tmessage\r\n"
        "8\tlast line without its end\tpage");
    EXPECT_TRUE(table.problems.empty());
    ASSERT_EQ(table.entries.size(), 3U);
    EXPECT_EQ(table.entries[0].id, 7U);
    EXPECT_EQ(table.entries[0].text, "First line\nsecond\tcell \\n");
    EXPECT_EQ(table.entries[1].id, 4294967295U);
    EXPECT_EQ(table.entries[1].name, "kLarger");
    EXPECT_EQ(table.entries[1].text, "Größer – ≥");
    EXPECT_EQ(table.entries[1].use, "message");
    EXPECT_EQ(table.entries[2].text, "last line without its end");
}

TEST(StringTable, SkipsAMalformedLineAndSaysWhy) {
    struct Case {
        const char* line;
        const char* reason;
    };
    const Case cases[] = {
        {"12", "not three or four columns"},
        {"12\tname\ttext\tuse\tmore", "not three or four columns"},
        {"0\ttext\tuse", "the id is not a positive number"},
        {"4294967296\ttext\tuse", "the id is not a positive number"},
        {"12\ta\\qb\tuse", "unknown escape"},
        {"12\tends with\\\tuse", "unknown escape"},
        {"12\t\ttext\tuse", "an empty column"},
        {"1\tagain\tuse", "the id 1 is there already"},
    };
    for (const Case& c : cases) {
        const StringTable table = ParseStringTable("1\tone\tuse\n" + std::string(c.line) + "\n2\ttwo\tuse\n");
        ASSERT_EQ(table.problems.size(), 1U) << c.line;
        EXPECT_EQ(table.problems[0].line, 2U) << c.line;
        EXPECT_EQ(table.problems[0].reason, c.reason) << c.line;
        ASSERT_EQ(table.entries.size(), 2U) << c.line;
        EXPECT_EQ(table.entries[0].text, "one") << c.line;
        EXPECT_EQ(table.entries[1].text, "two") << c.line;
    }
}

}  // namespace
}  // namespace orvex
