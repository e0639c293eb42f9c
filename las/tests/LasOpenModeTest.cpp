#include "las/LasOpenMode.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "host/utilities/testing/LazSamples.h"
#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Reopening : public ::testing::Test {
  protected:
    std::wstring AddLas(const std::wstring& name) {
        return Add(folder.Write(name, testing::LasBuilder(12, 1).AddPoints(9).Build()));
    }
    std::wstring AddLaz(const std::wstring& name) {
        testing::WriteSample(folder.Name(name), {}, true);
        return Add(folder.Name(name));
    }
    std::wstring Add(const std::wstring& path) {
        rows.push_back(InspectLasFile(path));
        return path;
    }
    LasReopened Reopen(bool readWrite) { return ReopenFiles(rows, readWrite, progress); }

    testing::TemporaryFolder folder;
    testing::RecordingProgress progress;
    std::vector<LasRow> rows;
};

TEST_F(Reopening, ReadWriteDecompressesALazFileOnceAndOpensItsLasFile) {
    const std::wstring laz = AddLaz(L"a.laz");
    const std::string before = testing::ReadFile(laz);
    LasReopened reopened = Reopen(true);
    ASSERT_TRUE(reopened.Succeeded());
    ASSERT_NE(reopened.files[0], nullptr);
    EXPECT_EQ(reopened.files[0]->FileName(), folder.Name(L"a.las"));
    EXPECT_FALSE(reopened.files[0]->IsReadOnly());
    EXPECT_EQ(reopened.files[0]->GetPointCount(), 1000U);
    EXPECT_EQ(testing::ReadFile(laz), before);
    EXPECT_THAT(progress.texts, ElementsAre(Text(text::kLasReopeningProgress)));

    rows[0].file = std::move(reopened.files[0]);
    EXPECT_EQ(Reopen(true).files[0], nullptr);
    EXPECT_THAT(progress.texts, SizeIs(1)) << "told only when a file is reopened";
    LasReopened again = Reopen(false);
    ASSERT_NE(again.files[0], nullptr);
    EXPECT_TRUE(again.files[0]->IsReadOnly());
    EXPECT_EQ(folder.Entries(), 2U);
}

TEST_F(Reopening, FailuresAreAllNamedAndChangeNothing) {
    AddLas(L"good.las");
    const std::wstring laz = AddLaz(L"bad.laz");
    const std::wstring gone = AddLas(L"gone.las");
    const std::string bytes = testing::ReadFile(laz);
    folder.Write(L"bad.laz", bytes.substr(0, bytes.size() / 2));
    Add(folder.Write(L"unreadable.las", "no LAS file"));
    std::filesystem::remove(ToPath(gone));
    const LasReopened reopened = Reopen(true);
    ASSERT_THAT(reopened.failures, SizeIs(2)) << "but those that were never open";
    EXPECT_EQ(reopened.failures[0].path, laz);
    EXPECT_EQ(reopened.failures[1].path, gone);
    EXPECT_FALSE(reopened.failures[0].cause.empty());
    EXPECT_TRUE(rows[0].file->IsReadOnly());
    EXPECT_EQ(folder.Entries(), 3U) << "no half file";
}

TEST_F(Reopening, StoppingADecompressionIsNoFailure) {
    AddLaz(L"a.laz");
    AddLas(L"b.las");
    progress.stopAfter = 0;
    const LasReopened reopened = Reopen(true);
    EXPECT_TRUE(reopened.stopped);
    EXPECT_FALSE(reopened.Succeeded());
    EXPECT_THAT(reopened.failures, IsEmpty());
    EXPECT_EQ(folder.Entries(), 2U);
}

}  // namespace
}  // namespace orvex
