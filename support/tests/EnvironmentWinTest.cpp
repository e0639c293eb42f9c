#include <gmock/gmock.h>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Log.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/Variable.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;

TEST(Environment, ValuesAreUnicodeOfAnyLength) {
    const std::wstring name = L"ORVEX_TEST_ä";
    for (const std::wstring& value : {std::wstring(L"Größe \U0001F600 日本"), std::wstring(255, L'ü'),
                                      std::wstring(256, L'ü'), std::wstring(20000, L'ü'), std::wstring()}) {
        const testing::Variable variable(name, value);
        EXPECT_EQ(EnvironmentVariable(name), value);
    }
    EXPECT_EQ(EnvironmentVariable(name), std::nullopt);
}

// A user's name can be anything, and so can the length of a redirected profile's path. The log is opened once
// in a process, so that this is the only test of it here.
TEST(Log, LiesInTheUsersFolderWhateverItsName) {
    const testing::TemporaryFolder folder;
    const std::wstring profile =
        folder.Name(L"Jörg 日本\\" + std::wstring(200, L'x') + L"\\" + std::wstring(100, L'y'));
    const testing::Variable local(L"LOCALAPPDATA", profile);
    const testing::Variable named(L"ORVEX_LOG", std::nullopt);
    LogInfo(L"a line with ä and \U0001F600");
    const std::wstring file = profile + L"\\Orvex\\orvex.log";
    ASSERT_TRUE(FileExists(file));
    EXPECT_THAT(testing::ReadFile(file), HasSubstr(ToUtf8(L"a line with ä and \U0001F600")));
}

}  // namespace
}  // namespace orvex
