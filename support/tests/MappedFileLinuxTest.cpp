#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/MappedFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(MappedFile, NamesTheSystemsReason) {
    const testing::TemporaryFolder folder;
    const std::wstring pipe = folder.Name(L"pipe");
    ASSERT_EQ(mkfifo(ToUtf8(pipe).c_str(), 0600), 0);
    MappedFile file;
    EXPECT_EQ(file.Open(folder.Name(L"absent.las"), true), ENOENT);
    EXPECT_EQ(file.Open(FromPath(folder.Path()), true), EISDIR);
    EXPECT_NE(file.Open(pipe, true), 0) << "does not wait for a writer either";
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(SystemErrorText(ENOENT).empty());
}

}  // namespace
}  // namespace orvex
