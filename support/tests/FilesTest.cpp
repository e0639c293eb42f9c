#include "support/Files.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "support/ByteReader.h"
#include "support/MappedFile.h"
#include "support/PathSet.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

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
    using namespace std::chrono;
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"a", "a");
    const std::wstring other = folder.Write(L"b", "b");
    const FileTime morning = sys_days(2024y / May / 17) + 9h + 30min;
    std::filesystem::last_write_time(ToPath(file), file_clock::from_sys(morning));
    EXPECT_EQ(LastWriteTime(file), morning);
    EXPECT_EQ(CopyLastWriteTime(file, other), 0);
    EXPECT_EQ(LastWriteTime(other), morning);
    EXPECT_NE(CopyLastWriteTime(folder.Name(L"absent"), other), 0);
}

TEST(Files, ARenamedFileReplacesAnotherUnlessAFreeNameIsWanted) {
    const TemporaryFolder folder;
    const std::wstring from = folder.Write(L"from", "new");
    const std::wstring to = folder.Write(L"to", "old");
    bool taken = false;
    EXPECT_NE(RenameToFreeName(from, to, taken), 0);
    EXPECT_TRUE(taken);
    EXPECT_EQ(testing::ReadFile(to), "old");
    const std::wstring free = folder.Name(L"free");
    EXPECT_EQ(RenameToFreeName(from, free, taken), 0);
    EXPECT_FALSE(taken);
    EXPECT_FALSE(FileExists(from));
    EXPECT_NE(RenameToFreeName(from, folder.Name(L"other"), taken), 0) << "is gone";
    EXPECT_FALSE(taken);

    EXPECT_EQ(RenameFile(free, to), 0);
    EXPECT_EQ(testing::ReadFile(to), "new");
    EXPECT_FALSE(FileExists(free));
    EXPECT_NE(RenameFile(free, to), 0) << "is gone";
    EXPECT_EQ(RemoveFile(to), 0);
    EXPECT_NE(RemoveFile(to), 0) << "is gone";
}

TEST(Files, NamesOfAnyLengthWork) {
    const TemporaryFolder folder;
    std::wstring deep = folder.Name(L"deep");
    while (deep.size() <= 400) {
        deep = FromPath(ToPath(deep) / ToPath(L"Geländeaufnahme der südlichen Flächen"));
    }
    ASSERT_EQ(CreateFolders(deep), 0);
    EXPECT_EQ(CreateFolders(deep), 0) << "is there";
    const std::wstring file = FromPath(ToPath(deep) / "a.bin");
    std::ofstream(ToPath(file), std::ios::binary) << "content";
    EXPECT_EQ(FileSizeOf(file), 7U);
    EXPECT_EQ(FileNameOf(CanonicalPath(file)), L"a.bin");
    MappedFile mapped;
    ASSERT_EQ(mapped.Open(file, true), 0);
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
    EXPECT_NE(ListFolder(folder.Name(L"ü.las"), collect), 0);
}

TEST(PathSet, LettersTellFilesApartOnlyWhereBothAreThere) {
    const TemporaryFolder folder;
    const std::wstring lower = folder.Write(L"tile.las", "a");
    const std::wstring upper = folder.Name(L"TILE.las");
    PathSet set;
    EXPECT_TRUE(set.Insert(lower));
    EXPECT_FALSE(set.Insert(lower));
    EXPECT_TRUE(set.Contains(upper)) << "one file, or one of which nothing is there";
    EXPECT_FALSE(set.Contains(folder.Name(L"tile2.las")));
    // A second file of the name on a system that tells case apart; elsewhere the first one again.
    folder.Write(L"TILE.las", "b");
    EXPECT_EQ(set.Contains(upper), IsSameFile(lower, upper));
    EXPECT_EQ(set.Insert(upper), !IsSameFile(lower, upper));
    EXPECT_TRUE(set.Contains(lower));
    EXPECT_TRUE(set.Contains(upper));
}

TEST(TemporaryFile, RemovesWhatKilledProcessesLeft) {
    const TemporaryFolder folder;
    const TemporaryFile running(folder.Name(L"a.las"));
    const std::wstring levels = FileNameOf(running.Path()) + L".ovr";
    for (const std::wstring& name :
         {std::wstring(L".orvex-1.tmp"), std::wstring(L".orvex-1.tmp.ovr"), std::wstring(L".orvex-2.tmp.ovr"),
          std::wstring(L".orvex-notes.tmp"), std::wstring(L"a.tmp"), levels}) {
        folder.Write(name, "bytes");
    }
    // A folder is searched once under each of its names.
    const std::wstring again = folder.Name(L"../" + FileNameOf(FromPath(folder.Path())));
    TemporaryFile next(again + L"/b.las");
    const std::wstring nextName = FileNameOf(next.Path());
    const auto names = [&] {
        std::set<std::wstring> found;
        ListFolder(FromPath(folder.Path()), [&](const FolderEntry& entry) {
            found.insert(FileNameOf(entry.path));
            return true;
        });
        return found;
    };
    EXPECT_THAT(names(), UnorderedElementsAre(L".orvex-notes.tmp", L"a.tmp", levels,
                                              FileNameOf(running.Path()), nextName));
    std::ofstream(ToPath(next.Path()), std::ios::binary | std::ios::trunc) << "whole";
    EXPECT_EQ(next.Commit(), 0);
    EXPECT_EQ(testing::ReadFile(folder.Name(L"b.las")), "whole");
    EXPECT_FALSE(names().contains(nextName));
}

TEST(MappedFile, ReadsAndMapsBeyondFourGigabytes) {
    constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;
    struct Part {
        std::uint64_t offset;
        const char* text;
    };
    // Two places whose offsets differ in the upper half only, one across the border, one at the end.
    const Part parts[] = {{12345, "near"},
                          {4 * kGigabyte + 12345, "far "},
                          {4 * kGigabyte - 2, "edge"},
                          {5 * kGigabyte - 4, "tail"}};
    const TemporaryFolder folder;
    const std::wstring name = folder.Write(L"sparse ä.bin", "");
    testing::GrowSparse(name, 5 * kGigabyte);
    for (const Part& part : parts) {
        testing::WriteAt(name, part.offset, part.text);
    }
    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    ASSERT_EQ(file.CreateMapping(), 0);
    std::uint64_t size = 0;
    ASSERT_EQ(file.Size(size), 0);
    EXPECT_EQ(size, 5 * kGigabyte);
    MappedView view;
    for (const Part& part : parts) {
        std::array<std::byte, 4> buffer{};
        std::size_t read = 0;
        ASSERT_EQ(file.ReadAt(part.offset, buffer, read), 0);
        EXPECT_EQ(ByteReader(buffer).FixedText(0, read), part.text);
        ASSERT_EQ(file.Map(part.offset, 4, false, view), 0);
        EXPECT_EQ(ByteReader(view.Bytes()).FixedText(0, 4), part.text);
    }
    std::array<std::byte, 8> beyond{};
    std::size_t read = 0;
    EXPECT_EQ(file.ReadAt(size - 4, beyond, read), 0);
    EXPECT_EQ(read, 4U);
    EXPECT_EQ(file.ReadAt(size + 1, beyond, read), 0);
    EXPECT_EQ(read, 0U);
    EXPECT_NE(file.ReadAt(~std::uint64_t{0}, beyond, read), 0);
    EXPECT_NE(file.Map(size - 4, 5, false, view), 0);
    EXPECT_NE(file.Map(~std::uint64_t{0}, 4, false, view), 0);
    EXPECT_NE(file.WriteAt(0, beyond), 0) << "opened for reading";

    MappedFile writer;
    ASSERT_EQ(writer.Open(name, false), 0);
    const std::array written{std::byte{'a'}, std::byte{'b'}};
    EXPECT_EQ(writer.WriteAt(4 * kGigabyte + 12346, written), 0);
    EXPECT_EQ(writer.Sync(), 0);
    std::array<std::byte, 4> around{};
    ASSERT_EQ(file.ReadAt(4 * kGigabyte + 12345, around, read), 0);
    EXPECT_EQ(ByteReader(around).FixedText(0, read), "fab ");
    EXPECT_NE(writer.WriteAt(~std::uint64_t{0}, written), 0);
    EXPECT_NE(writer.Reserve(~std::uint64_t{0}), 0);
    view = {};
    file.Close();  // a file that is mapped is not cut on every system
    EXPECT_EQ(writer.Reserve(100), 0);
    EXPECT_EQ(writer.Size(size), 0);
    EXPECT_EQ(size, 100U);
}

// Other programs go on reading and writing a file that is listed.
TEST(MappedFile, IsSharedWithOthers) {
    const TemporaryFolder folder;
    const std::wstring name = folder.Write(L"a.bin", "abcdef");
    MappedFile first, reader, writer;
    ASSERT_EQ(first.Open(name, false), 0);
    ASSERT_EQ(first.CreateMapping(), 0);
    MappedView view;
    ASSERT_EQ(first.Map(0, 6, true, view), 0);
    EXPECT_EQ(reader.Open(name, true), 0);
    EXPECT_EQ(writer.Open(name, false), 0);
    testing::WriteAt(name, 1, "X");
    std::array<std::byte, 6> buffer{};
    std::size_t read = 0;
    EXPECT_EQ(reader.ReadAt(0, buffer, read), 0);
    EXPECT_EQ(ByteReader(buffer).FixedText(0, read), "aXcdef");
    first.Close();
    EXPECT_EQ(ByteReader(view.Bytes()).FixedText(0, 6), "aXcdef") << "the view outlives the file";
}

TEST(ByteReader, NeverReadsBeyondItsEnd) {
    const std::array<std::byte, 6> bytes{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4},
                                         std::byte{5}};
    const ByteReader reader(bytes);
    EXPECT_EQ(reader.Read<std::uint32_t>(0), 0x04030201U);
    EXPECT_EQ(reader.TryRead<std::uint32_t>(3), std::nullopt);
    EXPECT_EQ(reader.TryRead<std::uint8_t>(~std::uint64_t{0}), std::nullopt);
    EXPECT_EQ(reader.Bytes(4, ~std::uint64_t{0}).size(), 2U);
    EXPECT_TRUE(reader.Bytes(7, 1).empty());
    EXPECT_FALSE(reader.Contains(~std::uint64_t{0}, 2));
}

}  // namespace
}  // namespace orvex
