#include <sys/stat.h>

#include "settings/OptionStore.h"
#include "settings/testing/ValueFileFixture.h"
#include "support/testing/FileSizeLimit_linux.h"
#include "support/testing/TestSystem.h"

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

TEST_F(ValueFileLinuxTest, APipeOrACircleOfLinksInTheFilesPlaceIsSetAside) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(fs::is_fifo(path_.string() + ".damaged-1"));
    fs::create_symlink(path_.filename(), path_);
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_TRUE(fs::is_symlink(path_.string() + ".damaged-2"));
    EXPECT_EQ(Get(file_, L"a"), "1");
}

TEST_F(ValueFileLinuxTest, AFullDiskKeepsTheOldValue) {
    EXPECT_TRUE(Put(file_, L"a", "old"));
    {
        const testing::FileSizeLimit full(4096);
        EXPECT_FALSE(Put(file_, L"a", std::string(50000, 'n')));
        EXPECT_EQ(Get(file_, L"a"), "old");
    }
    EXPECT_EQ(Get(file_, L"a"), "old");
    EXPECT_TRUE(Put(file_, L"a", "new"));
    EXPECT_EQ(NamesInFolder(), Names{"user.sqlite"});
}

TEST_F(ValueFileLinuxTest, OptionsAreInOneFilePerRootInTheConfigFolder) {
    const testing::Variable own(L"ORVEX_CONFIG_DIR", FromPath(folder_.Path()));
    const testing::Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", FromPath(folder_.Path()));
    const auto registry = MakeRegistryStore();
    EXPECT_TRUE(OptionStore(*registry).Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_EQ(NamesInFolder(), Names{"user.sqlite"});
    EXPECT_TRUE(OptionStore(*registry).Put(opt2NativeWindows, true));
    EXPECT_EQ(NamesInFolder(), (Names{"machine.sqlite", "user.sqlite"}));
}

TEST_F(ValueFileLinuxTest, OptionsOfAnUnreadableStoreAreTheDefaults) {
    const testing::Variable own(L"ORVEX_CONFIG_DIR", FromPath(folder_.Path()));
    fs::create_directory(path_);
    fs::create_directory(path_.string() + "-journal");
    const auto registry = MakeRegistryStore();
    const OptionStore options(*registry);
    EXPECT_EQ(options.Get(opt2AddLASThinning, std::int32_t{1}), 16);
    EXPECT_EQ(options.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
}

}  // namespace
}  // namespace orvex
