#include "settings/SqliteRegistry.h"

#include <gtest/gtest.h>

#include <clocale>

#include "settings/OptionStore.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/Variable.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using testing::Variable;
namespace fs = std::filesystem;

TEST(SqliteRegistry, OptionsOfAnUnreadableStoreAreTheDefaults) {
    const TemporaryFolder folder;
    const auto registry = MakeSqliteRegistryStore(folder.Path(), folder.Path());
    const OptionStore options(*registry);
    EXPECT_EQ(options.Get(opt2AddLASThinning, std::int32_t{1}), 16);
    EXPECT_TRUE(options.Get(opt2ShowOrvexLASOverwriteWarning, false));
    EXPECT_EQ(options.Get(opt2PyramidType, std::int32_t{2}), 2);
    EXPECT_FALSE(options.Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_EQ(options.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
}

TEST(SqliteRegistry, StoredNumbersDoNotDependOnTheLocale) {
    const TemporaryFolder folder;
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const auto registry =
        MakeSqliteRegistryStore(folder.Path() / "user.sqlite", folder.Path() / "machine.sqlite");
    const OptionStore options(*registry);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        GTEST_SKIP() << "no comma-decimal locale here";
    }
    EXPECT_TRUE(options.Put(opt2PointDensity, 0.125));
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(options.Get(opt2PointDensity, 0.0), 0.125);
}

TEST(SqliteRegistry, IsThePlatformsStoreInTheConfigFolder) {
    const TemporaryFolder folder;
    const Variable own(L"ORVEX_CONFIG_DIR", FromPath(folder.Path()));
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", FromPath(folder.Path()));
    const auto registry = MakeRegistryStore();
    EXPECT_TRUE(OptionStore(*registry).Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_TRUE(fs::exists(folder.Path() / "user.sqlite"));
    EXPECT_FALSE(fs::exists(folder.Path() / "machine.sqlite"));
    EXPECT_TRUE(OptionStore(*registry).Put(opt2NativeWindows, true));
    EXPECT_TRUE(fs::exists(folder.Path() / "machine.sqlite"));
}

}  // namespace
}  // namespace orvex
