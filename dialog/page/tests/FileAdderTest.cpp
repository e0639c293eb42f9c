#include "dialog/page/FileAdder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "dialog/page/ProjectFiles.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/ProgressIf.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Row {
    std::wstring path;
    std::wstring note;
};

// Stops when a condition that the test names holds.
class ConditionalProgress final : public Kst::ProgressIf {
  public:
    std::function<bool()> stopWhen = [] { return false; };
    std::vector<std::wstring> texts;
    std::vector<std::uint64_t> positions;
    std::uint64_t total = 0;
    void SetRange(std::uint64_t range) override { total = range; }
    void SetText(const std::wstring& text) override { texts.push_back(text); }
    void SetPosition(std::uint64_t done) override { positions.push_back(done); }
    bool IsCancelled() override { return stopWhen(); }
};

class FileAdding : public ::testing::Test {
  protected:
    std::vector<std::wstring> Files(int count) {
        std::vector<std::wstring> paths;
        paths.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            paths.push_back(L"/data/" + std::to_wstring(i) + L".las");
        }
        return paths;
    }

    AddingSummary Add(AddingRequest request) {
        return Add(FileReader<Row>(inspect, Failed), std::move(request));
    }
    AddingSummary Add(const FileReader<Row>& reader, AddingRequest request) {
        FileReader<Row>::Rows listing;
        listing.append = [this](std::vector<Row> batch) {
            batchSizes.push_back(batch.size());
            std::move(batch.begin(), batch.end(), std::back_inserter(rows));
            shown();
        };
        listing.replace = [this](auto read) {
            for (auto& [row, record] : read) {
                rows.at(row) = std::move(record);
            }
            shown();
        };
        listing.remove = [this](const std::vector<std::size_t>& gone) {
            for (auto row = gone.rbegin(); row != gone.rend(); ++row) {
                rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(*row));
            }
        };
        listing.tellAwaited = [this](std::size_t files) { awaited.push_back(files); };
        listing.mustSkip = [this] { return mustSkip(); };
        return reader.Add(description, std::move(request), listing, prompts, progress);
    }

    static Row Failed(const std::wstring& path, const std::wstring& message) { return {path, message}; }

    std::vector<std::wstring> Paths() const {
        std::vector<std::wstring> paths;
        std::ranges::transform(rows, std::back_inserter(paths), &Row::path);
        return paths;
    }

    AddingDescription description{text::kLasReadingProgress, text::kLasManyFilesQuestion,
                                  text::kLasManyFilesCaption, 10, nullptr};
    std::function<Row(const std::wstring&)> inspect = [](const std::wstring& path) {
        return Row{path, L"ok"};
    };
    ConditionalProgress progress;
    testing::ScriptedPrompts prompts;
    std::vector<Row> rows;
    std::vector<std::size_t> batchSizes;
    std::vector<std::size_t> awaited;     ///< numbers that were told
    std::function<void()> shown = [] {};  ///< after a change of the rows
    std::function<bool()> mustSkip = [] { return false; };
    std::atomic<bool> seen_ = false;
};

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

/// Files of a folder that answers when the test lets it, and others; every call that does not return at once
/// is overdue.
class DeadFolder : public FileAdding {
  protected:
    DeadFolder() {
        description.confirmText = {};
        inspect = [open = gate_.get_future().share(), asked = isAsked_](const std::wstring& path) {
            if (FolderOf(path) == L"/dead") {
                *asked = true;
                open.wait();
            }
            return Row{path, L"ok"};
        };
        for (int i = 0; i < 300; ++i) {
            for (const wchar_t* folder : {L"/dead/", L"/live/"}) {
                paths_.push_back(folder + std::to_wstring(i) + L".las");
            }
        }
    }
    void Open() {
        if (!std::exchange(isOpen_, true)) {
            gate_.set_value();
        }
    }
    /// True when all files have rows, and those of the folder that answers are read.
    bool AreOthersRead() const {
        return rows.size() == paths_.size() && std::ranges::all_of(rows, [](const Row& row) {
                   return FolderOf(row.path) == L"/dead" || row.note == L"ok";
               });
    }

    std::vector<std::wstring> paths_;
    /// The folder is being read. Of threads that outlive a test too.
    std::shared_ptr<std::atomic<bool>> isAsked_ = std::make_shared<std::atomic<bool>>(false);

  private:
    std::promise<void> gate_;
    bool isOpen_ = false;
};

/// The names of the drives that the two folders are on.
class DeadDrive : public DeadFolder,
                  public ::testing::WithParamInterface<std::pair<std::wstring, std::wstring>> {
  protected:
    AddingRequest Request() const {
        const auto driveOf = [drives = GetParam()](const std::wstring& folder) {
            return folder == L"/dead" ? drives.first : drives.second;
        };
        return {.paths = paths_, .listed = {}, .drives = {.driveOf = driveOf, .patience = {}}};
    }
};

TEST_P(DeadDrive, HoldsUpOnlyItsOwnRowsWhichAreFilledInTheirPlace) {
    const std::wstring twin = L"/dead/7.LAS";  // neither is there: one file
    paths_.push_back(twin);
    std::vector<std::wstring> waiting;
    shown = [&] {
        if (waiting.empty() && AreOthersRead()) {
            std::ranges::transform(rows, std::back_inserter(waiting), &Row::note);
            Open();
        }
    };
    const AddingSummary summary = Add(Request());
    EXPECT_THAT(waiting, ::testing::Contains(FormatText(Text(text::kWaitingFor), {L"/dead"})).Times(301));
    paths_.pop_back();
    EXPECT_EQ(Paths(), paths_);
    EXPECT_THAT(rows, ::testing::Each(::testing::Field(&Row::note, L"ok")));
    EXPECT_EQ(summary.added, 600U);
    EXPECT_EQ(summary.skipped, 1U);
    EXPECT_THAT(summary.unread, IsEmpty());
    EXPECT_EQ(awaited.back(), 0U);
}

TEST_P(DeadDrive, IsSkippedAndItsFilesAreLeft) {
    mustSkip = [this] { return AreOthersRead(); };
    const AddingSummary summary = Add(Request());
    EXPECT_FALSE(summary.stopped);
    EXPECT_EQ(summary.abandonedPath, L"");
    const auto isDead = [](const std::wstring& path) { return FolderOf(path) == L"/dead"; };
    std::vector<std::wstring> live = paths_;
    std::erase_if(live, isDead);
    EXPECT_EQ(Paths(), live);
    std::erase_if(paths_, std::not_fn(isDead));
    EXPECT_EQ(summary.unread, paths_);
    EXPECT_EQ(awaited.back(), 0U);
    Open();
}

TEST_P(DeadDrive, IsLeftByEscapeWithItsFiles) {
    progress.stopWhen = [this] { return *isAsked_ && AreOthersRead(); };
    const AddingSummary summary = Add(Request());
    EXPECT_TRUE(summary.stopped);
    EXPECT_EQ(FolderOf(summary.abandonedPath), L"/dead");
    EXPECT_THAT(rows, ::testing::AllOf(SizeIs(300), ::testing::Each(::testing::Field(&Row::note, L"ok"))));
    EXPECT_THAT(summary.unread, SizeIs(300));
    Open();
}

INSTANTIATE_TEST_SUITE_P(FileAdding, DeadDrive,
                         ::testing::Values(std::pair(L"dead", L"live"), std::pair(L"disk", L"disk")));

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
