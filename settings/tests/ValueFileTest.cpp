#include "settings/ValueFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <clocale>
#include <csignal>
#include <fstream>
#include <iterator>

#include "settings/ConfigFolder.h"
#include "settings/OptionStore.h"
#include "settings/SqliteRegistry.h"
#include "settings/testing/OrdinaryUser.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
using testing::TemporaryFolder;
namespace fs = std::filesystem;

constexpr auto kLongestCall = std::chrono::milliseconds(1000);

/// A child process that runs `work` and ends with its result.
template <typename Work>
pid_t InChild(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    return child;
}

int ExitCodeOf(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class ValueFileTest : public ::testing::Test {
  protected:
    static bool Put(ValueFile& file, const std::wstring& name, const std::string& text) {
        return file.Store(L"key", name, 3, std::as_bytes(std::span(text))) == ValueStatus::Ok;
    }
    /// The stored text; "-" for none, "!" for no access.
    static std::string Get(ValueFile& file, const std::wstring& name) {
        ValueFile::Value value;
        switch (file.Find(L"key", name, value)) {
            case ValueStatus::Ok:
                return {reinterpret_cast<const char*>(value.data.data()), value.data.size()};
            case ValueStatus::NotFound:
                return "-";
            case ValueStatus::NoAccess:
                break;
        }
        return "!";
    }
    /// The names in the folder that begin with `prefix`.
    std::vector<std::string> NamesOf(const std::string& prefix) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.Path())) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with(prefix)) {
                names.push_back(name);
            }
        }
        return names;
    }

    TemporaryFolder folder_;
    fs::path path_ = folder_.Path() / "user.sqlite";
    ValueFile file_{path_, ValueFileOwner::User};
};

TEST_F(ValueFileTest, ReadingMakesNoFileAndWritingLeavesOnlyOne) {
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(NamesOf("").empty());
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesOf(""), std::vector<std::string>{"user.sqlite"});

    ValueFile deep(folder_.Path() / "new" / "folder" / "user.sqlite", ValueFileOwner::User);
    EXPECT_TRUE(Put(deep, L"a", "1"));
    const auto rights = fs::status(folder_.Path() / "new" / "folder").permissions();
    EXPECT_EQ(rights & (fs::perms::group_all | fs::perms::others_all), fs::perms::none);
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
    int kept = 0;
    for (const auto& c : cases) {
        for (const bool readFirst : {true, false}) {
            SCOPED_TRACE(c.what);
            std::ofstream(path_, std::ios::binary) << c.bytes;
            ValueFile file(path_, ValueFileOwner::User);
            const auto start = Clock::now();
            if (readFirst) {
                EXPECT_EQ(Get(file, L"b"), "-");
            }
            EXPECT_TRUE(Put(file, L"b", "new"));
            EXPECT_EQ(Get(file, L"b"), "new");
            EXPECT_LT(Clock::now() - start, kLongestCall);
            ++kept;
            const fs::path aside = path_.string() + ".damaged-" + std::to_string(kept);
            EXPECT_TRUE(testing::ReadFile(FromPath(aside)) == c.bytes) << aside;
        }
    }
}

TEST_F(ValueFileTest, AnEmptyFileIsAnEmptyStore) {
    std::ofstream(path_, std::ios::binary) << "";
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(Put(file_, L"a", "1"));
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_EQ(NamesOf("user.sqlite").size(), 1U);
}

TEST_F(ValueFileTest, ADamagedFileThatCannotBeWrittenIsLeftAlone) {
    std::ofstream(path_, std::ios::binary) << "no database at all";
    const testing::OrdinaryUser user(folder_.Path());
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_FALSE(Put(file_, L"a", "1"));
    EXPECT_EQ(NamesOf("").size(), 1U);
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
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_FALSE(Put(file_, L"a", "1"));
    EXPECT_TRUE(fs::is_fifo(path_));

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

TEST_F(ValueFileTest, AFullDiskKeepsTheOldValue) {
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

TEST_F(ValueFileTest, ValuesAreBounded) {
    EXPECT_FALSE(Put(file_, L"a", std::string(2U << 20, 'x')));
    EXPECT_EQ(Get(file_, L"a"), "-");
    EXPECT_TRUE(Put(file_, L"a", "small"));
}

TEST_F(ValueFileTest, ALockedFileHoldsACallUpForLessThanASecondAndOnlyOnce) {
    EXPECT_TRUE(Put(file_, L"a", "1"));
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    const pid_t holder = InChild([&] {
        const SqliteConnection::Mode mode = SqliteConnection::Mode::Existing;
        SqliteConnection connection(path_, mode, {Clock::now(), Clock::now() + std::chrono::minutes(1)});
        const char result = connection.Execute("BEGIN EXCLUSIVE") == SQLITE_OK ? 'y' : 'n';
        const bool isTold = write(told[1], &result, 1) == 1;
        pause();
        return isTold ? 0 : 1;
    });
    char isLocked = 'n';
    ASSERT_EQ(read(told[0], &isLocked, 1), 1);
    ASSERT_EQ(isLocked, 'y');

    const auto start = Clock::now();
    EXPECT_EQ(Get(file_, L"a"), "!");
    EXPECT_LT(Clock::now() - start, kLongestCall);
    const auto next = Clock::now();
    for (int i = 0; i < 10; ++i) {
        EXPECT_FALSE(Put(file_, L"a", "2"));
    }
    EXPECT_LT(Clock::now() - next, kLongestCall / 2);

    kill(holder, SIGKILL);
    ExitCodeOf(holder);
    close(told[0]);
    close(told[1]);
    EXPECT_EQ(Get(file_, L"a"), "1");
    EXPECT_TRUE(Put(file_, L"a", "2"));
}

TEST_F(ValueFileTest, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int kWriters = 2;
    constexpr int kValues = 200;
    pid_t writers[kWriters];
    for (int writer = 0; writer < kWriters; ++writer) {
        writers[writer] = InChild([&] {
            int refused = 0;
            for (int i = 0; i < kValues; ++i) {
                const std::wstring name = std::to_wstring(writer) + L"-" + std::to_wstring(i);
                refused += Put(file_, name, std::to_string(i)) ? 0 : 1;
            }
            return refused == 0 ? 0 : 1;
        });
    }
    for (const pid_t writer : writers) {
        EXPECT_EQ(ExitCodeOf(writer), 0);
    }
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kValues; ++i) {
            EXPECT_EQ(Get(file_, std::to_wstring(writer) + L"-" + std::to_wstring(i)), std::to_string(i));
        }
    }
}

TEST_F(ValueFileTest, ProcessesThatFindTheSameDamageKeepOneCopyAndAllNewValues) {
    std::ofstream(path_, std::ios::binary) << std::string(4096, 'd');
    std::vector<pid_t> writers(6);
    for (std::size_t writer = 0; writer < writers.size(); ++writer) {
        writers[writer] = InChild([&] { return Put(file_, std::to_wstring(writer), "new") ? 0 : 1; });
    }
    for (const pid_t writer : writers) {
        EXPECT_EQ(ExitCodeOf(writer), 0);
    }
    for (std::size_t writer = 0; writer < writers.size(); ++writer) {
        EXPECT_EQ(Get(file_, std::to_wstring(writer)), "new");
    }
    EXPECT_EQ(NamesOf("user.sqlite.damaged"), std::vector<std::string>{"user.sqlite.damaged-1"});
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"user.sqlite.damaged-1")) == std::string(4096, 'd'));
}

TEST_F(ValueFileTest, OptionsOfAnUnreadableStoreAreTheDefaults) {
    fs::create_directory(path_);
    const auto registry = MakeSqliteRegistryStore(path_, path_);
    const OptionStore options(*registry);
    EXPECT_EQ(options.Get(opt2AddLASThinning, std::int32_t{1}), 16);
    EXPECT_TRUE(options.Get(opt2ShowOrvexLASOverwriteWarning, false));
    EXPECT_EQ(options.Get(opt2PyramidType, std::int32_t{2}), 2);
    EXPECT_FALSE(options.Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_EQ(options.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
}

TEST_F(ValueFileTest, StoredNumbersDoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const auto registry = MakeSqliteRegistryStore(path_, folder_.Path() / "machine.sqlite");
    const OptionStore options(*registry);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        GTEST_SKIP() << "no comma-decimal locale here";
    }
    EXPECT_TRUE(options.Put(opt2PointDensity, 0.125));
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(options.Get(opt2PointDensity, 0.0), 0.125);
}

/// Sets an environment variable for one test; null takes it away.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            old_ = old;
        }
        Set(value);
    }
    ~Variable() { Set(old_ ? old_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void Set(const char* value) const { value == nullptr ? unsetenv(name_) : setenv(name_, value, 1); }

    const char* name_;
    std::optional<std::string> old_;
};

TEST(ConfigFolder, FollowsTheEnvironment) {
    const struct {
        const char *own, *xdg, *home, *expected;
    } cases[] = {
        {"/own", "/xdg", "/home/me", "/own"},
        {nullptr, "/xdg", "/home/me", "/xdg/orvex"},
        {"", "relative", "/home/me", "/home/me/.config/orvex"},
        {nullptr, nullptr, "/home/me", "/home/me/.config/orvex"},
    };
    for (const auto& c : cases) {
        const Variable own("ORVEX_CONFIG_DIR", c.own);
        const Variable xdg("XDG_CONFIG_HOME", c.xdg);
        const Variable home("HOME", c.home);
        EXPECT_EQ(UserConfigFolder(), c.expected);
    }
    const Variable machine("ORVEX_MACHINE_CONFIG_DIR", nullptr);
    EXPECT_EQ(MachineConfigFolder(), "/etc/orvex");
    const Variable moved("ORVEX_MACHINE_CONFIG_DIR", "/elsewhere");
    EXPECT_EQ(MachineConfigFolder(), "/elsewhere");
}

TEST(ConfigFolder, HoldsThePlatformsStore) {
    const TemporaryFolder folder;
    const Variable own("ORVEX_CONFIG_DIR", folder.Path().c_str());
    const Variable machine("ORVEX_MACHINE_CONFIG_DIR", folder.Path().c_str());
    const auto registry = MakeRegistryStore();
    EXPECT_TRUE(OptionStore(*registry).Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_TRUE(fs::exists(folder.Path() / "user.sqlite"));
    EXPECT_FALSE(fs::exists(folder.Path() / "machine.sqlite"));
    EXPECT_TRUE(OptionStore(*registry).Put(opt2NativeWindows, true));
    EXPECT_TRUE(fs::exists(folder.Path() / "machine.sqlite"));
}

}  // namespace
}  // namespace orvex
