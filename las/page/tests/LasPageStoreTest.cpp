#include "las/page/LasPageStore.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <numeric>

#include "host/utilities/testing/LazSamples.h"
#include "las/testing/LasBuilder.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class LasStore : public ::testing::Test {
  protected:
    std::wstring AddLas(const std::wstring& name) {
        return Add(folder.Write(name, testing::LasBuilder(12, 1).AddPoints(9).Build()));
    }
    std::wstring AddLaz(const std::wstring& name) {
        const std::wstring path = folder.Name(name);
        testing::WriteSample(path, {}, true);
        return Add(path);
    }
    std::wstring Add(const std::wstring& path) {
        rows.push_back({InspectLasFile(path), L"LAS Layer_1", false, 1});
        return path;
    }
    LasReopened Store() {
        std::vector<std::size_t> order(rows.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        return pageStore.Store(rows, order, options, OptionStore(registry), progress);
    }

    static LasPageOptions ReadWrite() {
        LasPageOptions readWrite;
        readWrite.readWrite = true;
        return readWrite;
    }
    std::vector<std::wstring> FilesIn(const std::wstring& inFolder) const {
        const auto found = params.lasFiles.find(inFolder);
        return found == params.lasFiles.end() ? std::vector<std::wstring>() : found->second;
    }
    std::wstring Root() const { return FromPath(folder.Path()); }

    testing::TemporaryFolder folder;
    testing::FakeRegistry registry;
    testing::RecordingProgress progress;
    AddFilesParams params;
    std::vector<LasRow> rows;
    LasPageOptions options;
    LasPageStore pageStore{params};
};

TEST_F(LasStore, FilesAreGroupedByFolderInTheOrderOfTheRows) {
    const std::wstring b = AddLas(L"b.las");
    const std::wstring other = AddLas(L"sub/c.las");
    const std::wstring a = AddLas(L"a.las");
    Add(folder.Write(L"broken.las", "no LAS file"));
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_THAT(params.lasFiles, SizeIs(2));
    EXPECT_THAT(FilesIn(Root()), ElementsAre(L"b.las", L"a.las"));
    EXPECT_THAT(FilesIn(FolderOf(other)), ElementsAre(L"c.las"));
    EXPECT_THAT(params.lasFileDetails, SizeIs(3));
    EXPECT_EQ(params.lasFileDetails.at(b), rows[0].inspection.file.get());
    EXPECT_EQ(params.lasFileLayers.at(a), L"LAS Layer_1");
    EXPECT_EQ(rows[3].inspection.file, nullptr) << "not readable: listed, not stored";
}

TEST_F(LasStore, OptionsReachTheRecordAndTheStore) {
    options = ReadWrite();
    options.footprintsOnly = true;
    options.append = true;
    options.thinning = 256;
    options.convertExistingQvr = true;
    options.reCreateOrvexLas = true;
    options.ignoreIncompatibleCrs = true;
    options.loadCorruptFiles = true;
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_TRUE(params.lasOpenSetting && params.lasLoadSetting && params.lasAppend &&
                params.convertExistingQvr && params.reCreateOrvexLas && params.lasIgnoreIncompatibleCrs &&
                params.lasLoadCorruptFiles);
    EXPECT_EQ(params.lasThinning, 256);
    EXPECT_EQ(params.lasPyramidType, 1);
    EXPECT_EQ(params.orvexLasBackupOption, 1);
    EXPECT_EQ(ReadLasPageOptions(OptionStore(registry)).thinning, 256);
}

TEST_F(LasStore, OverwritingIsPendingOnlyForAConversionWithoutBackup) {
    for (int bits = 0; bits < 8; ++bits) {
        options.convertExistingQvr = (bits & 1) != 0;
        options.pyramidType = (bits & 2) != 0 ? LasPyramidType::OrvexLas : LasPyramidType::Qvr;
        options.backup = (bits & 4) != 0 ? LasBackupOption::Overwrite : LasBackupOption::Backup;
        ASSERT_TRUE(Store().Succeeded());
        EXPECT_EQ(params.orvexLasOverwritePending, bits == 7) << bits;
    }
}

TEST_F(LasStore, ReadOnlyLeavesLazFilesAsTheyAre) {
    const std::wstring laz = AddLaz(L"a.laz");
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_THAT(FilesIn(Root()), ElementsAre(L"a.laz"));
    EXPECT_TRUE(params.lasFileDetails.at(laz)->IsReadOnly());
    EXPECT_EQ(folder.Entries(), 1U);
}

TEST_F(LasStore, ReadWriteDecompressesALazFileOnceAndOpensItsLasFile) {
    const std::wstring laz = AddLaz(L"a.laz");
    const std::string before = testing::ReadFile(laz);
    options = ReadWrite();
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_THAT(FilesIn(Root()), ElementsAre(L"a.laz")) << "the file that was chosen";
    ASSERT_TRUE(params.lasFileDetails.contains(laz));
    EXPECT_EQ(params.lasFileDetails.at(laz)->FileName(), folder.Name(L"a.las"));
    EXPECT_FALSE(params.lasFileDetails.at(laz)->IsReadOnly());
    EXPECT_EQ(params.lasFileDetails.at(laz)->GetPointCount(), 1000U);
    EXPECT_TRUE(params.lasFileLayers.contains(laz));
    EXPECT_EQ(rows[0].inspection.path, laz) << "the list still names the LAZ file";
    EXPECT_EQ(testing::ReadFile(laz), before);
    EXPECT_THAT(progress.texts, ElementsAre(Text(text::kLasReopeningProgress)));

    // Again, in both modes: nothing is decompressed any more.
    const LASFile* opened = rows[0].inspection.file.get();
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_EQ(rows[0].inspection.file.get(), opened);
    EXPECT_THAT(progress.texts, SizeIs(1));
    options.readWrite = false;
    ASSERT_TRUE(Store().Succeeded());
    EXPECT_THAT(FilesIn(Root()), ElementsAre(L"a.laz"));
    EXPECT_THAT(params.lasFileDetails, SizeIs(1));
    EXPECT_THAT(progress.texts, SizeIs(2)) << "told only when a file is reopened";
}

TEST_F(LasStore, FailuresAreAllNamedAndChangeNothing) {
    AddLas(L"good.las");
    const std::wstring laz = AddLaz(L"bad.laz");
    const std::wstring gone = AddLas(L"gone.las");
    const std::string bytes = testing::ReadFile(laz);
    folder.Write(L"bad.laz", bytes.substr(0, bytes.size() / 2));
    std::filesystem::remove(ToPath(gone));
    options = ReadWrite();
    const LASFile* before = rows[0].inspection.file.get();

    const LasReopened result = Store();
    EXPECT_FALSE(result.Succeeded());
    ASSERT_THAT(result.failures, SizeIs(2));
    EXPECT_EQ(result.failures[0].path, laz);
    EXPECT_EQ(result.failures[1].path, gone);
    EXPECT_FALSE(result.failures[0].cause.empty());
    EXPECT_EQ(rows[0].inspection.file.get(), before);
    EXPECT_TRUE(rows[0].inspection.file->IsReadOnly());
    EXPECT_THAT(params.lasFiles, IsEmpty());
    EXPECT_FALSE(params.lasOpenSetting);
    EXPECT_EQ(registry.Find(RegistryRoot::CurrentUser, L"AddFilesDlg", L"optAddLASOpenSetting"), nullptr);
    EXPECT_EQ(folder.Entries(), 2U) << "no half file";
}

TEST_F(LasStore, StoppingADecompressionRefusesWithoutAFailure) {
    AddLaz(L"a.laz");
    AddLas(L"b.las");
    options = ReadWrite();
    progress.stopAfter = 0;
    const LasReopened result = Store();
    EXPECT_TRUE(result.stopped);
    EXPECT_THAT(result.failures, IsEmpty());
    EXPECT_THAT(params.lasFiles, IsEmpty());
    EXPECT_EQ(folder.Entries(), 2U);
}

TEST_F(LasStore, WithdrawingMakesTheRecordWhatItWas) {
    params.lasFiles[L"/host"] = {L"own.las"};
    params.lasThinning = 5;
    AddLas(L"a.las");
    ASSERT_TRUE(Store().Succeeded());
    ASSERT_TRUE(Store().Succeeded()) << "a second OK after a later page refused";
    EXPECT_THAT(FilesIn(Root()), ElementsAre(L"a.las")) << "listed once";
    pageStore.Withdraw();
    pageStore.Withdraw();
    EXPECT_THAT(params.lasFiles,
                ElementsAre(std::pair(std::wstring(L"/host"), std::vector<std::wstring>{L"own.las"})));
    EXPECT_THAT(params.lasFileDetails, IsEmpty());
    EXPECT_EQ(params.lasThinning, 5);
    EXPECT_NE(rows[0].inspection.file, nullptr) << "the rows own their files again";
}

TEST_F(LasStore, OnlyStoredFilesAreHandedOver) {
    const std::wstring path = AddLas(L"a.las");
    pageStore.HandOver(rows);
    ASSERT_NE(rows[0].inspection.file, nullptr);
    ASSERT_TRUE(Store().Succeeded());
    pageStore.HandOver(rows);
    EXPECT_EQ(rows[0].inspection.file, nullptr);
    pageStore.Withdraw();
    ASSERT_TRUE(params.lasFileDetails.contains(path)) << "the host's now";
    delete params.lasFileDetails.at(path);
}

}  // namespace
}  // namespace orvex
