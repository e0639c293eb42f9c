#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <memory>

#include "dialog/page/tests/FileAdding.h"
#include "support/Files.h"
#include "support/Format.h"

namespace orvex {
namespace {

using testing::FileAdding;
using ::testing::IsEmpty;
using testing::Row;
using ::testing::SizeIs;

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

}  // namespace
}  // namespace orvex
