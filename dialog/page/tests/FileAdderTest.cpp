#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "dialog/page/ProjectFiles.h"
#include "dialog/page/tests/FileAdding.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::FileAdding;
using ::testing::IsEmpty;
using testing::Row;
using ::testing::SizeIs;

TEST_F(FileAdding, ASlowFileKeepsItsPlaceWhileOthersAreRead) {
    description.confirmText = {};
    std::promise<void> thirdRead;
    std::atomic<bool> wasOvertaken = false;
    inspect = [&, third = thirdRead.get_future().share()](const std::wstring& path) {
        if (path == L"/data/0.las") {
            wasOvertaken = third.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
        } else if (path == L"/data/3.las") {
            thirdRead.set_value();
        }
        return Row{path, L""};
    };
    const auto paths = Files(600);
    Add({paths, {}, 0});
    EXPECT_TRUE(wasOvertaken);
    EXPECT_EQ(Paths(), paths);
}

TEST(FileReaders, AreAsManyAsTheTimeForAFileIsWorth) {
    const struct {
        const char* what;
        std::size_t readers, files;
        std::chrono::microseconds spent;
        std::size_t next;
    } cases[] = {
        {"a drive that is awaited", 1, 0, std::chrono::microseconds(0), 2},
        {"four are the most", 4, 0, std::chrono::microseconds(0), 4},
        {"LAS files", 1, 100, std::chrono::microseconds(4000), 1},
        {"LAS files after a start that took long", 4, 100, std::chrono::microseconds(4000), 3},
        {"rasters", 1, 25, std::chrono::microseconds(4000), 2},
        {"rasters, after the window was busy", 3, 600, std::chrono::microseconds(90000), 4},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(adding::NextReaders(c.readers, c.files, c.spent), c.next) << c.what;
    }
}

TEST_F(FileAdding, SkipsWhatIsListedInAnyLetterCaseOrAsABuddy) {
    description.buddy = [](const std::wstring& path) {
        const std::wstring extension = UpperExtensionOf(path);
        return extension == L".LAZ"   ? WithExtension(path, L".las")
               : extension == L".LAS" ? WithExtension(path, L".laz")
                                      : std::wstring();
    };
    const AddingSummary summary = Add(
        {{L"/d/a.las", L"/D/OLD.las", L"/d/A.LAS", L"/d/a.laz", L"/d/listed.laz", L"/d/b.laz", L"/d/b.las"},
         {{PathKey(L"/d/old.las"), L"/d/old.las"}, {PathKey(L"/d/LISTED.las"), L"/d/LISTED.las"}},
         2});
    EXPECT_THAT(Paths(), ElementsAre(L"/d/a.las", L"/d/b.laz"));
    EXPECT_EQ(summary.skipped, 5U);
    EXPECT_EQ(summary.offered, 7U);
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(FileAdding, TellsFilesApartThatDifferInTheCaseOfTheirNames) {
    const testing::TemporaryFolder folder;
    const std::wstring lower = folder.Write(L"tile.las", "a");
    const std::wstring upper = folder.Write(L"Tile.las", "b");
    const std::wstring linked = folder.Name(L"TILE.las");
    const std::wstring missing = folder.Name(L"TILE.LAS");
    const bool areTwo = !IsSameFile(lower, upper);  // not on Windows
    std::error_code error;
    std::filesystem::create_hard_link(ToPath(lower), ToPath(linked), error);
    const AddingSummary summary = Add({{upper, linked, missing, upper}, {{PathKey(lower), lower}}, 1});
    EXPECT_EQ(Paths(), areTwo ? std::vector{upper} : std::vector<std::wstring>());
    EXPECT_EQ(summary.skipped, areTwo ? 3U : 4U);
}

TEST_F(FileAdding, AsksOnceWhenTheGridReachesTenRows) {
    const struct {
        std::size_t rowsBefore;
        int files;
        PromptAnswer answer;
        std::size_t questions, added;
    } cases[] = {
        {0, 9, PromptAnswer::No, 0, 9},    {0, 10, PromptAnswer::No, 1, 10},
        {0, 50, PromptAnswer::No, 1, 10},  {0, 50, PromptAnswer::Yes, 1, 50},
        {7, 20, PromptAnswer::No, 1, 3},   {7, 20, PromptAnswer::Cancel, 1, 3},
        {10, 20, PromptAnswer::No, 0, 20},
    };
    for (const auto& c : cases) {
        rows.clear();
        prompts.shown.clear();
        prompts.answers = {c.answer};
        const AddingSummary summary = Add({Files(c.files), {}, c.rowsBefore});
        EXPECT_THAT(prompts.shown, SizeIs(c.questions)) << c.rowsBefore << " + " << c.files;
        EXPECT_EQ(rows.size(), c.added) << c.rowsBefore << " + " << c.files;
        EXPECT_EQ(summary.added, c.added);
        EXPECT_EQ(summary.stopped, c.questions == 1 && c.answer != PromptAnswer::Yes);
    }
}

TEST_F(FileAdding, EscapeKeepsWhatWasReadAndReadsNoMore) {
    description.confirmText = {};
    std::atomic<int> read = 0;
    std::atomic<bool> escape = false;
    inspect = [&](const std::wstring& path) {
        if (++read == 25) {
            escape = true;
            // The file in hand is finished after the key was seen.
            while (!seen_) {
                std::this_thread::yield();
            }
        }
        return Row{path, L""};
    };
    progress.stopWhen = [&] {
        seen_ = escape.load();
        return seen_.load();
    };
    const AddingSummary summary = Add({Files(1000), {}, 0});
    EXPECT_TRUE(summary.stopped);
    EXPECT_GE(summary.added, 25U);
    EXPECT_LT(summary.added, 1000U);
    EXPECT_EQ(static_cast<int>(rows.size()), read) << "what was read is listed";
    EXPECT_EQ(summary.abandonedPath, L"");
}

// The late record must be freed although nobody is there any more to take it.
TEST_F(FileAdding, AFileThatDoesNotAnswerIsAbandonedAndItsRecordFreedLater) {
    auto gate = std::make_shared<std::promise<void>>();
    auto alive = std::make_shared<int>(7);
    const std::weak_ptr<int> watch = alive;
    auto arrived = std::make_shared<std::promise<void>>();
    inspect = [open = gate->get_future().share(), alive, arrived](const std::wstring& path) {
        if (path == L"/data/2.las") {
            arrived->set_value();
            open.wait();
        }
        return Row{path, L""};
    };
    alive.reset();
    auto hanging = arrived->get_future();
    progress.stopWhen = [&] {
        return hanging.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    const AddingSummary summary = Add({Files(5), {}, 0});
    EXPECT_TRUE(summary.stopped);
    EXPECT_EQ(summary.abandonedPath, L"/data/2.las");
    EXPECT_THAT(summary.unread, ::testing::Contains(L"/data/2.las"));
    EXPECT_THAT(Paths(), ::testing::IsSupersetOf({L"/data/0.las", L"/data/1.las"}));
    EXPECT_EQ(rows.size() + summary.unread.size(), 5U) << "what was read beside it is listed";
    inspect = nullptr;
    gate->set_value();
    for (int i = 0; i < 2000 && !watch.expired(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(watch.expired());
}

// Those that read beside the one that fails must not wait for room that nobody makes any more.
TEST_F(FileAdding, AFileThatGetsNoRowEndsTheRun) {
    std::promise<void> thirdRead;
    const auto read = [&, third = thirdRead.get_future().share()](const std::wstring& path) {
        if (path == L"/data/0.las") {
            third.wait_for(std::chrono::seconds(20));
            throw std::runtime_error("file");
        }
        if (path == L"/data/3.las") {
            thirdRead.set_value();
        }
        return Row{path, L""};
    };
    const FileReader<Row> reader(read, [](auto&, auto&) -> Row { throw std::runtime_error("row"); });
    EXPECT_THROW(Add(reader, {Files(2000), {}, 100}), std::runtime_error);
}

TEST_F(FileAdding, AnErrorOfTheGridEndsTheRun) {
    const FileReader<Row> reader(inspect, Failed);
    shown = [] { throw std::runtime_error("grid"); };
    EXPECT_THROW(Add(reader, {Files(2000), {}, 100}), std::runtime_error);
}

/// Reads files several in a call, of which those throw that have one of a path.
class BatchReading : public FileAdding {
  protected:
    AddingSummary AddInBatches(AddingRequest request, const std::wstring& failing = {}) {
        description.confirmText = {};
        const auto read = [&](std::span<const std::wstring> paths) {
            const std::lock_guard guard(lock);
            calls.emplace_back(paths.begin(), paths.end());
            if (std::ranges::find(paths, failing) != paths.end()) {
                throw std::runtime_error("connection lost");
            }
            std::vector<Row> found;
            for (const std::wstring& path : paths) {
                found.push_back({path, L"ok"});
            }
            return found;
        };
        return Add(FileReader<Row>(read, kAtOnce, Failed), std::move(request));
    }

    static constexpr std::size_t kAtOnce = 16;
    std::mutex lock;
    std::vector<std::vector<std::wstring>> calls;
};

TEST_F(BatchReading, KeepsTheOrderAndReadsEachFileOnceButThoseThatAreListed) {
    auto paths = Files(1003);
    const AddingSummary summary = AddInBatches({paths,
                                                {{PathKey(paths[0]), paths[0]},
                                                 {PathKey(paths[500]), paths[500]},
                                                 {PathKey(paths[1002]), paths[1002]}},
                                                3});
    EXPECT_EQ(summary.added, 1000U);
    EXPECT_EQ(summary.skipped, 3U);
    EXPECT_EQ(progress.total, 1003U);
    EXPECT_EQ(progress.positions.back(), 1003U);
    EXPECT_EQ(progress.texts[500], FormatText(Text(text::kLasReadingProgress), {501, 1003}));
    EXPECT_THAT(prompts.shown, IsEmpty()) << "a page without a question asks none";
    paths.pop_back();
    paths.erase(paths.begin() + 500);
    paths.erase(paths.begin());
    EXPECT_EQ(Paths(), paths);
    EXPECT_THAT(calls, ::testing::Each(SizeIs(::testing::Le(kAtOnce))));
    EXPECT_THAT(calls, SizeIs(::testing::Lt(500U))) << "several in a call";
    EXPECT_THAT(batchSizes, ::testing::Each(::testing::Le(100U)));
}

TEST_F(BatchReading, EveryFileOfACallThatThrowsHasFailed) {
    const auto paths = Files(100);
    EXPECT_EQ(AddInBatches({paths, {}, 0}, paths[40]).added, 100U);
    EXPECT_EQ(Paths(), paths);
    for (const auto& call : calls) {
        const bool threw = std::ranges::find(call, paths[40]) != call.end();
        for (const std::wstring& path : call) {
            EXPECT_EQ(std::ranges::find(rows, path, &Row::path)->note, threw ? L"connection lost" : L"ok");
        }
    }
}

TEST(ProjectFiles, KnowAFileByItsPathAndItsBuddys) {
    const auto buddy = [](const std::wstring& path) {
        return path.ends_with(L".laz") ? WithExtension(path, L".las") : std::wstring();
    };
    ProjectFiles files({L"/d/a.las", L"/d/b.laz", L"/d/a.las"}, buddy);
    for (const wchar_t* known : {L"/d/a.las", L"/D/A.las", L"/d/b.laz", L"/d/a.laz"}) {
        EXPECT_TRUE(files.Has(known)) << ToUtf8(known);
    }
    for (const wchar_t* other : {L"/d/b.las", L"/a.las", L""}) {
        EXPECT_FALSE(files.Has(other)) << ToUtf8(other);
    }
    ProjectFiles rasters({L"/d/a.tif"}, {});
    EXPECT_TRUE(rasters.Has(L"/d/a.tif"));
}

}  // namespace
}  // namespace orvex
