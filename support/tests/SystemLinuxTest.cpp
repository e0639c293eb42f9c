#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "support/Drives_linux.h"
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

TEST(Drives, LinksAreFollowedOnLocalDisksOnly) {
    const testing::TemporaryFolder folder;
    const std::string here = ToUtf8(folder.Name({}));
    std::filesystem::create_directory(ToPath(folder.Name(L"home")));
    std::filesystem::create_directory(ToPath(folder.Name(L"share")));
    std::filesystem::create_directory_symlink("../share/in", ToPath(folder.Name(L"home/link")));
    std::filesystem::create_directory_symlink("home/link/deep", ToPath(folder.Name(L"further")));
    std::filesystem::create_directory_symlink("circle", ToPath(folder.Name(L"circle")));
    std::filesystem::create_directory_symlink("../home", ToPath(folder.Name(L"share/back")));
    const std::string root = "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/a rw\n";
    const std::string rest = "24 22 8:2 / " + here + "home rw shared:2 master:3 - xfs /dev/b rw\n" +
                             "25 22 0:50 / " + here + "share rw - nfs4 server:/ rw\n";
    const struct {
        const char* what;
        std::string table;
        const wchar_t *link, *further, *circle, *back;
    } cases[] = {
        {"local disks", root + rest, L"0:50", L"0:50", L"8:1", L"0:50"},
        {"a root of any kind", "22 1 0:9 / / rw - virtiofs root rw\n" + rest, L"0:50", L"0:50", L"0:9",
         L"0:50"},
        {"no table: nothing is looked at", "", nullptr, nullptr, nullptr, nullptr},
    };
    const std::wstring unknown = folder.Name({}).substr(0, folder.Name({}).find(L'/', 1));
    for (const auto& c : cases) {
        std::istringstream table(c.table);
        const DriveFinder driveOf = FindDrivesIn(table);
        const std::pair<const wchar_t*, const wchar_t*> folders[] = {{L"home/link/x", c.link},
                                                                     {L"further/x", c.further},
                                                                     {L"circle/x", c.circle},
                                                                     {L"share/back/x", c.back}};
        for (const auto& [name, drive] : folders) {
            EXPECT_EQ(driveOf(folder.Name(name)), drive == nullptr ? unknown : drive)
                << c.what << ToUtf8(name);
        }
    }
    std::istringstream none;
    std::filesystem::create_directory_symlink("/proc/self", ToPath(folder.Name(L"out")));
    EXPECT_EQ(FindDrivesIn(none)(folder.Name(L"out/x")), unknown);
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
