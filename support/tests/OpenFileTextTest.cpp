#include "support/OpenFileText.h"

#include <gmock/gmock.h>

namespace orvex {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAreArray;

TEST(OpenFileText, FiltersAreZeroEndedPairs) {
    EXPECT_EQ(OpenFileFilterText({}), L"");
    EXPECT_EQ(OpenFileFilterText({{L"LAS Files (*.las)", L"*.las;*.laz"}, {L"All Files (*.*)", L"*.*"}}),
              L"LAS Files (*.las)\0*.las;*.laz\0All Files (*.*)\0*.*\0\0"s);
    EXPECT_EQ(OpenFileFilterText({{L"", L"*.a"}, {L"b", L""}, {L"c", L"*.c"}}), L"c\0*.c\0\0"s)
        << "an empty text would end the list";
}

TEST(OpenFileText, SelectionsBecomeFullPaths) {
    struct Case {
        std::wstring buffer;
        std::vector<std::wstring> paths;
    };
    const Case cases[] = {
        {L""s, {}},
        {L"\0\0\0"s, {}},
        {L"C:\\a b\\x.las\0\0rest of an earlier text"s, {L"C:\\a b\\x.las"}},
        {L"C:\\a\0y.las\0x.las\0\0"s, {L"C:\\a\\y.las", L"C:\\a\\x.las"}},
        {L"C:\\\0x.las\0y.las\0\0"s, {L"C:\\x.las", L"C:\\y.las"}},
        {L"\\\\server\\share\0x.las\0y.las\0\0"s, {L"\\\\server\\share\\x.las", L"\\\\server\\share\\y.las"}},
        {L"C:\\a\0x.las\0D:\\b\\y.las\0\\\\s\\c\\z.las\0\0"s,
         {L"C:\\a\\x.las", L"D:\\b\\y.las", L"\\\\s\\c\\z.las"}},
        {L"C:\\a\0x.las\0y"s, {L"C:\\a\\x.las", L"C:\\a\\y"}},  // full to the last character
    };
    for (const Case& c : cases) {
        EXPECT_THAT(ParseOpenFileSelection(c.buffer), ElementsAreArray(c.paths));
    }
}

TEST(OpenFileText, ErrorsAreToldApart) {
    EXPECT_EQ(OutcomeOfOpenFileError(0), PickOutcome::Cancelled);
    EXPECT_EQ(OutcomeOfOpenFileError(12291), PickOutcome::BufferTooSmall);
    EXPECT_EQ(OutcomeOfOpenFileError(9), PickOutcome::OutOfMemory);
    EXPECT_EQ(OutcomeOfOpenFileError(10), PickOutcome::OutOfMemory);
    EXPECT_EQ(OutcomeOfOpenFileError(0x3002), PickOutcome::Failed);
    EXPECT_EQ(OutcomeOfOpenFileError(0xFFFF), PickOutcome::Failed);
}

}  // namespace
}  // namespace orvex
