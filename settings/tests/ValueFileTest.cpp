#include "settings/ValueFile.h"

#include <fstream>
#include <functional>
#include <thread>

#include "settings/testing/PlatformStore.h"
#include "settings/testing/ValueFileFixture.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
using testing::Get;
using testing::Put;
namespace fs = std::filesystem;

constexpr auto kLongestLife = std::chrono::minutes(1);

class ValueFileTest : public testing::ValueFileFixture {
  protected:
    /// Runs processes that write at the same time; afterwards every value must be there.
    void Write(int writers, int values) {
        std::vector<testing::Words> children;
        children.reserve(static_cast<std::size_t>(writers));
        for (int writer = 0; writer < writers; ++writer) {
            children.push_back({FromPath(path_), std::to_wstring(writer), std::to_wstring(values)});
        }
        EXPECT_EQ(testing::RunChildren(children), std::vector<int>(children.size(), 0));
        for (const testing::Words& child : children) {
            for (int i = 0; i < values; ++i) {
                EXPECT_EQ(Get(file_, child[1] + L"-" + std::to_wstring(i)), std::to_string(i));
            }
        }
    }
};

TEST_F(ValueFileTest, ReadingMakesNoFileAndWritingLeavesOnlyOne) {
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(NamesInFolder().empty());
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesInFolder(), Names{"user.sqlite"});

    ValueFile deep(folder_.Path() / "new" / "folder" / "user.sqlite", ValueFileOwner::User);
    EXPECT_TRUE(Put(deep, L"a", "1"));
}

TEST_F(ValueFileTest, AnythingElseThanASoundFileMeansDefaultsAndAFreshStart) {
    EXPECT_TRUE(Put(file_, L"a", std::string(20000, 'x')));
    const std::string sound = testing::ReadFile(FromPath(path_));
    std::string torn = sound;
    std::fill(torn.begin() + 100, torn.begin() + 9000, '\xA5');
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"text", "[AddFilesDlg]\nthinning=4\n"},
        {"zeros", std::string(8192, '\0')},
        {"noise after the header", torn},
        {"cut off", sound.substr(0, 8192)},
    };
    std::ofstream(path_, std::ios::binary) << "";
    EXPECT_EQ(Get(file_, L"a"), "-") << "an empty file is an empty store";
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesInFolder(), Names{"user.sqlite"});
    int kept = 0;
    for (const auto& c : cases) {
        for (const bool readFirst : {true, false}) {
            SCOPED_TRACE(c.what);
            std::ofstream(path_, std::ios::binary) << c.bytes;
            ValueFile file(path_, ValueFileOwner::User);
            if (readFirst) {
                EXPECT_EQ(Get(file, L"b"), "-");
            }
            EXPECT_TRUE(Put(file, L"b", "new"));
            EXPECT_EQ(Get(file, L"b"), "new");
            ++kept;
            const fs::path aside = path_.string() + ".damaged-" + std::to_string(kept);
            EXPECT_TRUE(testing::ReadFile(FromPath(aside)) == c.bytes) << aside;
        }
    }
}

TEST_F(ValueFileTest, ADamagedMachineFileIsLeftToItsManager) {
    std::ofstream(path_, std::ios::binary) << "no database at all, and nobody's to replace";
    ValueFile file(path_, ValueFileOwner::Machine);
    EXPECT_EQ(Get(file, L"a"), "!");
    EXPECT_FALSE(Put(file, L"a", "1"));
    EXPECT_EQ(NamesInFolder(), Names{"user.sqlite"});
}

TEST_F(ValueFileTest, OtherThingsInTheFilesPlaceAreSetAsideWhole) {
    const auto run = [this](const char* sql) {
        SqliteConnection database(path_, SqliteConnection::Mode::Create,
                                  {Clock::now() + kLongestLife, Clock::now() + kLongestLife});
        EXPECT_EQ(database.Execute(sql), SQLITE_OK);
    };
    const std::function<void()> makers[] = {
        [&] { fs::create_directories(path_ / "folder"); },
        [&] { run("CREATE TABLE other (a)"); },
        [&] { run("CREATE TABLE stored_value (a)"); },
        [&] {
            std::ofstream(path_, std::ios::binary) << "too large for a copy";
            testing::GrowSparse(FromPath(path_), 65U << 20U);
        },
    };
    for (int kept = 0; const auto& make : makers) {
        make();
        const auto size = FileSizeOf(FromPath(path_));
        EXPECT_EQ(Get(file_, L"a"), "-");
        EXPECT_TRUE(Put(file_, L"a", "1"));
        ValueFile other(path_, ValueFileOwner::User);
        EXPECT_EQ(Get(other, L"a"), "1");
        const fs::path aside = path_.string() + ".damaged-" + std::to_string(++kept);
        EXPECT_EQ(FileSizeOf(FromPath(aside)), size) << aside;
        fs::remove(path_);
    }
}

// A journal belongs to the name that its file has.
TEST_F(ValueFileTest, WhatCannotBeSetAsideLeavesValuesInMemory) {
    fs::create_directory(path_);
    folder_.Write(L"user.sqlite-journal", "of another program");
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(Get(file_, L"A"), "1");
    EXPECT_TRUE(fs::is_directory(path_));
    fs::remove_all(path_);
    fs::remove(path_.string() + "-journal");
    EXPECT_EQ(Get(file_, L"b"), "-");
    ValueFile other(path_, ValueFileOwner::User);
    EXPECT_EQ(Get(other, L"a"), "1") << "written as soon as that is possible";
}

TEST_F(ValueFileTest, AFileInTheFoldersPlaceIsLeftAlone) {
    std::ofstream(path_, std::ios::binary) << "a file where a folder is meant to be";

    ValueFile below(path_ / "folder" / "user.sqlite", ValueFileOwner::User);
    EXPECT_NE(Get(below, L"a"), "1");
    EXPECT_FALSE(Put(below, L"a", "1"));
    ValueFile none({}, ValueFileOwner::User);
    EXPECT_EQ(Get(none, L"a"), "!");
    EXPECT_FALSE(Put(none, L"a", "1"));
}

TEST_F(ValueFileTest, WithoutRightsReadsWorkAndWritesAreRefused) {
    EXPECT_TRUE(Put(file_, L"a", "old"));
    folder_.Write(L"torn.sqlite", "no database at all");
    {
        const testing::Guard denied = testing::DenyWritesIn(folder_.Path());
        EXPECT_EQ(Get(file_, L"a"), "old");
        EXPECT_FALSE(Put(file_, L"a", "new"));
        ValueFile absent(folder_.Path() / "absent.sqlite", ValueFileOwner::User);
        EXPECT_EQ(Get(absent, L"a"), "-");
        EXPECT_FALSE(Put(absent, L"a", "new"));
        ValueFile torn(folder_.Path() / "torn.sqlite", ValueFileOwner::User);
        EXPECT_EQ(Get(torn, L"a"), "!");
        EXPECT_FALSE(Put(torn, L"a", "new"));
        EXPECT_EQ(NamesInFolder(), (Names{"torn.sqlite", "user.sqlite"}));
    }
    EXPECT_EQ(Get(file_, L"a"), "old");
    EXPECT_TRUE(Put(file_, L"a", "new"));
}

TEST_F(ValueFileTest, ALockedFileGetsItsValuesWhenItIsFree) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    ValueFile other(path_, ValueFileOwner::User);
    {
        SqliteConnection holder(path_, SqliteConnection::Mode::Existing,
                                {Clock::now(), Clock::now() + kLongestLife});
        ASSERT_EQ(holder.Execute("BEGIN EXCLUSIVE"), SQLITE_OK);
        EXPECT_EQ(Get(file_, L"a"), "!");
        EXPECT_TRUE(Put(file_, L"a", "2"));
        EXPECT_TRUE(Put(file_, L"b", "3"));
        EXPECT_EQ(Get(file_, L"a"), "2");
        EXPECT_EQ(Get(other, L"a"), "!");
    }
    EXPECT_TRUE(Put(file_, L"b", "4"));
    EXPECT_EQ(Get(other, L"a"), "2");
    EXPECT_EQ(Get(other, L"b"), "4");
}

TEST_F(ValueFileTest, ProcessesThatWriteAtOnceLoseNothing) {
    Write(20, 20);
}

TEST_F(ValueFileTest, ProcessesThatFindTheSameDamageKeepOneCopyAndAllNewValues) {
    const std::string damaged(4096, 'd');
    std::ofstream(path_, std::ios::binary) << damaged;
    Write(6, 1);
    EXPECT_EQ(NamesInFolder(), (Names{"user.sqlite", "user.sqlite.damaged-1"}));
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"user.sqlite.damaged-1")) == damaged);
}

TEST_F(ValueFileTest, AFoldersLockIsOneUsers) {
    FolderLock lock(folder_.Path(), Clock::now());
    const auto isFree = [this] {
        bool isHeld = false;
        // By another path, and on another thread: Windows gives a lock to its holder again.
        const fs::path path = folder_.Path() / ".." / folder_.Path().filename();
        std::thread([&] { isHeld = FolderLock(path, Clock::now()).IsHeld(); }).join();
        return isHeld;
    };
    EXPECT_TRUE(lock.IsHeld());
    EXPECT_FALSE(isFree());
    lock.Release();
    EXPECT_TRUE(isFree());
}

}  // namespace

// Words: the file, the writer's name, the number of values.
int testing::ChildMain(const Words& words) {
    ValueFile file(ToPath(words[0]), ValueFileOwner::User);
    int refused = 0;
    for (int i = 0; i < std::stoi(words[2]); ++i) {
        refused += Put(file, words[1] + L"-" + std::to_wstring(i), std::to_string(i)) ? 0 : 1;
    }
    return refused;
}

}  // namespace orvex

int main(int argc, char** argv) {
    const auto words = orvex::ProgramArguments(argc, argv);
    if (!words.empty() && !words[0].starts_with(L"--")) {
        return orvex::testing::ChildMain(words);
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
