#include "support/Files.h"

#include <gmock/gmock.h>

#include <fstream>

#include "support/FolderAccess.h"
#include "support/MappedFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using ::testing::UnorderedElementsAre;

TEST(Files, AreToldFromFoldersAndFromWhatIsNotThere) {
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"sub/ä b.las", "12345");
    const std::wstring sub = folder.Name(L"sub");
    struct Case {
        std::wstring path;
        FileKind kind;
        std::optional<std::uint64_t> size;
        bool hasTime;
    };
    for (const Case& c :
         {Case{file, FileKind::File, 5, true}, Case{sub, FileKind::Folder, std::nullopt, true},
          Case{folder.Name(L"absent"), FileKind::Missing, std::nullopt, false},
          Case{folder.Name(L"absent/a.las"), FileKind::Missing, std::nullopt, false},
          Case{L"", FileKind::Missing, std::nullopt, false}}) {
        EXPECT_EQ(KindOf(c.path), c.kind) << ToUtf8(c.path);
        EXPECT_EQ(FileSizeOf(c.path), c.size) << ToUtf8(c.path);
        EXPECT_EQ(LastWriteTime(c.path).has_value(), c.hasTime) << ToUtf8(c.path);
    }
    EXPECT_TRUE(CanCreateFilesIn(ToPath(sub)));
    EXPECT_FALSE(CanCreateFilesIn(ToPath(file)));
    EXPECT_FALSE(CanCreateFilesIn(ToPath(folder.Name(L"absent"))));
    EXPECT_GT(FreeSpaceIn(sub).value_or(0), 0U);
    EXPECT_FALSE(FreeSpaceIn(folder.Name(L"absent")));
    EXPECT_TRUE(IsSameFile(file, folder.Name(L"sub/../sub/ä b.las")));
    EXPECT_FALSE(IsSameFile(file, folder.Write(L"other", "12345")));
    EXPECT_EQ(CanonicalPath(folder.Name(L"sub/../sub")), CanonicalPath(sub));
}

TEST(Files, TimesAreThoseOfTheSystemClock) {
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"a", "a");
    const auto age = std::chrono::system_clock::now() - *LastWriteTime(file);
    EXPECT_LT(std::chrono::abs(age), std::chrono::minutes(1));
    const std::wstring other = folder.Write(L"b", "b");
    std::filesystem::last_write_time(ToPath(file), std::chrono::file_clock::now() - std::chrono::hours(48));
    EXPECT_EQ(CopyLastWriteTime(file, other), 0);
    EXPECT_EQ(LastWriteTime(other), LastWriteTime(file));
    EXPECT_NE(CopyLastWriteTime(folder.Name(L"absent"), other), 0);
    EXPECT_NE(CopyLastWriteTime(file, folder.Name(L"absent")), 0);
}

TEST(Files, ANameThatIsTakenIsNotReplacedWhenAFreeOneIsWanted) {
    const TemporaryFolder folder;
    const std::wstring from = folder.Write(L"from", "new");
    const std::wstring to = folder.Write(L"to", "old");
    bool taken = false;
    EXPECT_NE(RenameToFreeName(from, to, taken), 0);
    EXPECT_TRUE(taken);
    EXPECT_EQ(testing::ReadFile(to), "old");
    EXPECT_EQ(RenameToFreeName(from, folder.Name(L"free"), taken), 0);
    EXPECT_FALSE(taken);
    EXPECT_EQ(testing::ReadFile(folder.Name(L"free")), "new");
    EXPECT_FALSE(FileExists(from));
    EXPECT_NE(RenameToFreeName(from, folder.Name(L"other"), taken), 0) << "is gone";
    EXPECT_FALSE(taken);
}

TEST(Files, ARenamedFileReplacesAnother) {
    const TemporaryFolder folder;
    const std::wstring from = folder.Write(L"from", "new");
    const std::wstring to = folder.Write(L"to", "old");
    EXPECT_EQ(RenameFile(from, to), 0);
    EXPECT_EQ(testing::ReadFile(to), "new");
    EXPECT_FALSE(FileExists(from));
    EXPECT_NE(RenameFile(from, to), 0) << "is gone";
    folder.Write(L"folder/a", "a");
    EXPECT_NE(RenameFile(to, folder.Name(L"folder")), 0);
    EXPECT_NE(RemoveFile(folder.Name(L"folder")), 0) << "is not empty";
    EXPECT_EQ(RemoveFile(folder.Name(L"folder/a")), 0);
    EXPECT_EQ(RemoveFile(folder.Name(L"folder")), 0);
    EXPECT_NE(RemoveFile(folder.Name(L"folder")), 0) << "is gone";
}

TEST(Files, NamesOfAnyLengthWork) {
    const TemporaryFolder folder;
    std::wstring deep = folder.Name(L"deep");
    while (deep.size() <= 400) {
        deep = FromPath(ToPath(deep) / ToPath(L"Geländeaufnahme der südlichen Flächen"));
    }
    ASSERT_EQ(CreateFolders(deep), 0);
    EXPECT_EQ(CreateFolders(deep), 0) << "is there";
    EXPECT_TRUE(FolderExists(deep));
    EXPECT_TRUE(CanCreateFilesIn(ToPath(deep)));
    const std::wstring file = FromPath(ToPath(deep) / "a.bin");
    std::ofstream(ToPath(file), std::ios::binary) << "content";
    EXPECT_EQ(FileSizeOf(file), 7U);
    EXPECT_TRUE(LastWriteTime(file));
    EXPECT_EQ(FileNameOf(CanonicalPath(file)), L"a.bin");
    EXPECT_GT(FreeSpaceIn(deep).value_or(0), 0U);

    MappedFile mapped;
    ASSERT_EQ(mapped.Open(file, true), 0);
    ASSERT_EQ(mapped.CreateMapping(), 0);
    MappedView view;
    EXPECT_EQ(mapped.Map(3, 4, false, view), 0);
    EXPECT_EQ(view.Bytes()[0], std::byte{'t'});
    view = MappedView();
    mapped.Close();

    const std::wstring renamed = FromPath(ToPath(deep) / "b.bin");
    EXPECT_EQ(RenameFile(file, renamed), 0);
    std::vector<std::wstring> paths;
    EXPECT_EQ(ListFolder(deep,
                         [&paths](const FolderEntry& entry) {
                             paths.push_back(entry.path);
                             return true;
                         }),
              0);
    EXPECT_THAT(paths, UnorderedElementsAre(renamed));
    EXPECT_EQ(RemoveFile(renamed), 0);
}

TEST(Files, AFolderIsListedUntilTheVisitorHasEnough) {
    const TemporaryFolder folder;
    folder.Write(L"sub/deeper/a", "");
    folder.Write(L"ü.las", "");
    std::vector<std::wstring> files;
    std::vector<std::wstring> folders;
    const auto collect = [&](const FolderEntry& entry) {
        (entry.kind == FileKind::Folder ? folders : files).push_back(entry.path);
        return !entry.isLink;
    };
    EXPECT_EQ(ListFolder(FromPath(folder.Path()), collect), 0);
    EXPECT_THAT(files, UnorderedElementsAre(folder.Name(L"ü.las")));
    EXPECT_THAT(folders, UnorderedElementsAre(folder.Name(L"sub")));
    int visits = 0;
    EXPECT_EQ(ListFolder(FromPath(folder.Path()), [&](const FolderEntry&) { return ++visits == 5; }), 0);
    EXPECT_EQ(visits, 1);
    EXPECT_NE(ListFolder(folder.Name(L"absent"), collect), 0);
    EXPECT_NE(ListFolder(folder.Name(L"ü.las"), collect), 0);
}

}  // namespace
}  // namespace orvex
