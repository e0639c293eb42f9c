#include <gtest/gtest.h>

#include "support/Text.h"

namespace orvex {
namespace {

const std::wstring kLong(300, L'n');

TEST(WindowsPaths, ComeApart) {
    struct Case {
        const wchar_t *path, *folder, *name;
    };
    for (const Case& c : {
             Case{LR"(C:\data\a.b\tile.laz)", LR"(C:\data\a.b)", L"tile.laz"},
             Case{LR"(C:\data/tile)", LR"(C:\data)", L"tile"},
             Case{LR"(C:\tile.las)", LR"(C:\)", L"tile.las"},
             Case{LR"(C:\)", LR"(C:\)", L""},
             Case{L"C:tile.las", L"C:", L"tile.las"},
             Case{LR"(\tile.las)", LR"(\)", L"tile.las"},
             Case{LR"(\\server\share\tile.las)", LR"(\\server\share\)", L"tile.las"},
             Case{L"//server/share/tile.las", L"//server/share/", L"tile.las"},
             Case{LR"(\\server\share)", LR"(\\server\share)", L""},
             Case{LR"(\\?\C:\tile.las)", LR"(\\?\C:\)", L"tile.las"},
             Case{LR"(\\?\UNC\server\share\tile.las)", LR"(\\?\UNC\server\share\)", L"tile.las"},
             Case{LR"(d\tile.las)", L"d", L"tile.las"},
         }) {
        EXPECT_EQ(FolderOf(c.path), c.folder) << ToUtf8(c.path);
        EXPECT_EQ(FileNameOf(c.path), c.name) << ToUtf8(c.path);
    }
    EXPECT_EQ(UpperExtensionOf(LR"(C:\a.b\tile)"), L"");
    EXPECT_EQ(WithExtension(L"C:/a.b/tile", L".qvr"), L"C:/a.b/tile.qvr");
}

TEST(WindowsPaths, AreOneHoweverTheyAreWritten) {
    const std::wstring key = PathKey(LR"(C:\Größe\tile.las)");
    for (const wchar_t* path : {L"c:/GRÖßE/Tile.LAS", LR"(C:\größe/tile.las)", LR"(\\?\C:\Größe\tile.las)"}) {
        EXPECT_EQ(PathKey(path), key) << ToUtf8(path);
    }
    EXPECT_EQ(PathKey(LR"(\\?\UNC\server\share\a)"), PathKey(L"//Server/Share/A"));
    EXPECT_NE(PathKey(LR"(C:\Größe\tile.laz)"), key);
}

TEST(WindowsPaths, LongOnesGetThePrefixAndLoseItAgain) {
    struct Case {
        std::wstring text, system, shown;
    };
    for (const Case& c : {
             Case{LR"(C:\short)", LR"(C:\short)", LR"(C:\short)"},
             Case{L"C:/short/a", L"C:/short/a", LR"(C:\short\a)"},
             Case{LR"(C:\)" + kLong, LR"(\\?\C:\)" + kLong, LR"(C:\)" + kLong},
             Case{L"C:/x/../d/./" + kLong, LR"(\\?\C:\d\)" + kLong, LR"(C:\d\)" + kLong},
             Case{LR"(\\server\share\)" + kLong, LR"(\\?\UNC\server\share\)" + kLong,
                  LR"(\\server\share\)" + kLong},
             Case{L"//server/share/" + kLong, LR"(\\?\UNC\server\share\)" + kLong,
                  LR"(\\server\share\)" + kLong},
             Case{LR"(\\?\C:\)" + kLong, LR"(\\?\C:\)" + kLong, LR"(C:\)" + kLong},
             Case{LR"(\\?\C:\a)", LR"(\\?\C:\a)", LR"(C:\a)"},
             Case{LR"(\\.\pipe\x)", LR"(\\.\pipe\x)", LR"(\\.\pipe\x)"},
             Case{LR"(\\?\Volume{1}\a)", LR"(\\?\Volume{1}\a)", LR"(\\?\Volume{1}\a)"},
             Case{L"relative/a", L"relative/a", LR"(relative\a)"},
             Case{L"", L"", L""},
         }) {
        const std::filesystem::path path = ToPath(c.text);
        EXPECT_EQ(path.wstring(), c.system);
        EXPECT_EQ(FromPath(path), c.shown);
    }
    // The calls count the terminating zero and, for folders, a short name inside.
    EXPECT_EQ(ToPath(LR"(C:\)" + std::wstring(244, L'n')).wstring().size(), 247U);
    EXPECT_EQ(ToPath(LR"(C:\)" + std::wstring(245, L'n')).wstring().size(), 252U);
    EXPECT_EQ(ToPath(LR"(C:\)" + std::wstring(200, L'n'), 48).wstring().size(), 207U) << "room for a suffix";
    // A name that is short by itself is long from where the process is.
    EXPECT_TRUE(ToPath(kLong).wstring().starts_with(LR"(\\?\)"));
}

}  // namespace
}  // namespace orvex
