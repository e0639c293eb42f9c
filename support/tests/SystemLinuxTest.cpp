#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/Drives.h"
#include "support/Environment.h"
#include "support/MappedFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::Variable;
using Setting = std::optional<std::wstring>;

TEST(Environment, NamesTheSettingsFolders) {
    const struct {
        Setting own, xdg, home;
        const char* expected;
    } cases[] = {
        {L"/own", L"/xdg", L"/home/me", "/own"},
        {std::nullopt, L"/xdg", L"/home/me", "/xdg/orvex"},
        {L"", L"relative", L"/home/me", "/home/me/.config/orvex"},
        {std::nullopt, std::nullopt, L"/home/me", "/home/me/.config/orvex"},
    };
    for (const auto& c : cases) {
        const Variable own(L"ORVEX_CONFIG_DIR", c.own);
        const Variable xdg(L"XDG_CONFIG_HOME", c.xdg);
        const Variable home(L"HOME", c.home);
        EXPECT_EQ(UserConfigFolder(), c.expected);
    }
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", std::nullopt);
    EXPECT_EQ(MachineConfigFolder(), "/etc/orvex");
    const Variable moved(L"ORVEX_MACHINE_CONFIG_DIR", L"/elsewhere");
    EXPECT_EQ(MachineConfigFolder(), "/elsewhere");
}

TEST(Drives, AreToldApartWithoutLookingAtThem) {
    const DriveFinder driveOf = FindDrivesByName();
    EXPECT_NE(driveOf(L"/"), L"");
    EXPECT_NE(driveOf(L"/proc"), driveOf(L"/"));
    EXPECT_EQ(driveOf(L"/proc/self/not there"), driveOf(L"/proc"));
    EXPECT_EQ(driveOf(L"/processes"), driveOf(L"/")) << "no part of a name";
}

TEST(Drives, LinksAreFollowedFromTheDriveWithTheRootFolder) {
    const testing::TemporaryFolder folder;
    const DriveFinder driveOf = FindDrivesByName();
    std::filesystem::create_directory_symlink("/proc/self", ToPath(folder.Name(L"link")));
    std::filesystem::create_directory_symlink("link/fd", ToPath(folder.Name(L"further")));
    std::filesystem::create_directory_symlink("circle", ToPath(folder.Name(L"circle")));
    const std::wstring here = driveOf(folder.Name({}));
    const bool isFollowed = here == driveOf(L"/");
    EXPECT_EQ(driveOf(folder.Name(L"link/task")), isFollowed ? driveOf(L"/proc") : here);
    EXPECT_EQ(driveOf(folder.Name(L"further/deep")), isFollowed ? driveOf(L"/proc") : here);
    EXPECT_EQ(driveOf(folder.Name(L"circle/x")), here);
}

TEST(Environment, TheCacheFolderIsNeverTheCurrentOne) {
    const struct {
        Setting xdg, home;
        const char* expected;  ///< null: the home folder that the system knows
    } cases[] = {
        {L"/xdg", L"/home/me", "/xdg/orvex"},
        {std::nullopt, L"/home/me", "/home/me/.cache/orvex"},
        {L"", L"/home/me", "/home/me/.cache/orvex"},
        {L"relative", L"/home/me", "/home/me/.cache/orvex"},
        {L"", L"", nullptr},
        {std::nullopt, std::nullopt, nullptr},
        {L"", L"relative", nullptr},
    };
    const passwd* user = getpwuid(geteuid());
    for (const auto& c : cases) {
        const Variable xdg(L"XDG_CACHE_HOME", c.xdg);
        const Variable home(L"HOME", c.home);
        EXPECT_EQ(UserCacheFolder(), c.expected != nullptr
                                         ? std::filesystem::path(c.expected)
                                         : std::filesystem::path(user->pw_dir) / ".cache/orvex");
    }
}

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

    std::filesystem::create_symlink("circle", folder.Path() / "circle");
    EXPECT_EQ(KindOf(folder.Name(L"circle")), FileKind::NoAccess);
    EXPECT_EQ(KindOf(pipe), FileKind::Other);
}

}  // namespace
}  // namespace orvex
