#include "settings/ValueFile.h"

#include <fstream>

#include "settings/testing/PlatformStore.h"
#include "settings/testing/ValueFileFixture.h"

namespace orvex {
namespace {

using testing::Get;
using testing::Put;
namespace fs = std::filesystem;

class ValueFileTest : public testing::ValueFileFixture {};

TEST_F(ValueFileTest, ReadingMakesNoFileAndWritingLeavesOnlyOne) {
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(NamesOf("").empty());
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesOf(""), std::vector<std::string>{"user.sqlite"});

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
    EXPECT_EQ(NamesOf("user.sqlite").size(), 1U);
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

TEST_F(ValueFileTest, ADamagedFileThatCannotBeWrittenIsLeftAlone) {
    std::ofstream(path_, std::ios::binary) << "no database at all";
    const testing::OrdinaryUser user(folder_.Path());
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_FALSE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesOf(""), std::vector<std::string>{"user.sqlite"});
}

TEST_F(ValueFileTest, ADamagedMachineFileIsLeftToItsManager) {
    std::ofstream(path_, std::ios::binary) << "no database at all, and nobody's to replace";
    ValueFile file(path_, ValueFileOwner::Machine);
    EXPECT_EQ(Get(file, L"a"), "!");
    EXPECT_FALSE(Put(file, L"a", "1"));
    EXPECT_EQ(NamesOf("").size(), 1U);
}

TEST_F(ValueFileTest, OtherThingsInTheFilesPlaceAreLeftAlone) {
    fs::create_directory(path_);
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_FALSE(Put(file_, L"a", "1"));
    fs::remove(path_);
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
    {
        const testing::OrdinaryUser user(folder_.Path());
        EXPECT_EQ(Get(file_, L"a"), "old");
        EXPECT_FALSE(Put(file_, L"a", "new"));
        ValueFile absent(folder_.Path() / "absent.sqlite", ValueFileOwner::User);
        EXPECT_EQ(Get(absent, L"a"), "-");
        EXPECT_FALSE(Put(absent, L"a", "new"));
    }
    EXPECT_EQ(Get(file_, L"a"), "old");
    EXPECT_TRUE(Put(file_, L"a", "new"));
}

TEST_F(ValueFileTest, ValuesAreBounded) {
    EXPECT_FALSE(Put(file_, L"a", std::string(2U << 20, 'x')));
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(Put(file_, L"a", "small"));
}

}  // namespace
}  // namespace orvex
