#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "settings/testing/ValueFileFixture.h"

namespace orvex {
namespace {

using testing::Get;
using testing::Put;
namespace fs = std::filesystem;

class ValueFileLinuxTest : public testing::ValueFileFixture {};

TEST_F(ValueFileLinuxTest, AUsersNewFolderIsKeptFromOthers) {
    ValueFile deep(folder_.Path() / "new" / "folder" / "user.sqlite", ValueFileOwner::User);
    EXPECT_TRUE(Put(deep, L"a", "1"));
    const auto rights = fs::status(folder_.Path() / "new" / "folder").permissions();
    EXPECT_EQ(rights & (fs::perms::group_all | fs::perms::others_all), fs::perms::none);
}

TEST_F(ValueFileLinuxTest, APipeInTheFilesPlaceIsLeftAlone) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_FALSE(Put(file_, L"a", "1"));
    EXPECT_TRUE(fs::is_fifo(path_));
}

TEST_F(ValueFileLinuxTest, AFullDiskKeepsTheOldValue) {
    EXPECT_TRUE(Put(file_, L"a", "old"));
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit full{4096, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    EXPECT_FALSE(Put(file_, L"a", std::string(50000, 'n')));
    EXPECT_EQ(Get(file_, L"a"), "old");
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(Get(file_, L"a"), "old");
    EXPECT_TRUE(Put(file_, L"a", "new"));
    EXPECT_EQ(NamesOf("").size(), 1U);
}

}  // namespace
}  // namespace orvex
