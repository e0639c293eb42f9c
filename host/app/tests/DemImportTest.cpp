#include "host/app/DemImport.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "crs/GdalSetup.h"
#include "host/dem/testing/DemSamples.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::DemSample;
using testing::TemporaryFolder;

/// Stops as soon as it has seen a position.
class StoppingProgress final : public Kst::ProgressIf {
  public:
    std::uint64_t stopAt = UINT64_MAX;
    std::uint64_t range = 0;
    std::uint64_t last = 0;
    std::vector<std::wstring> texts;

    void SetRange(std::uint64_t total) override { range = total; }
    void SetText(const std::wstring& text) override { texts.push_back(text); }
    void SetPosition(std::uint64_t done) override {
        EXPECT_GE(done, last);
        last = done;
    }
    bool IsCancelled() override { return last >= stopAt; }
};

class DemImportTest : public ::testing::Test {
  protected:
    DemImportTest() {
        EnsureGdal();
        options_.outputFolder = folder_.Name(L"out");
        options_.versionMinor = 2;
        options_.pointFormat = 1;
    }

    DemToImport Dem(const std::wstring& name, int width = 7, int height = 5) {
        DemSample sample;
        sample.width = width;
        sample.height = height;
        sample.crs = "EPSG:25832";
        EXPECT_TRUE(testing::WriteDem(folder_.Name(name), sample));
        return {folder_.Name(name), L"layer of " + name};
    }

    TemporaryFolder folder_;
    DemConversionOptions options_;
    StoppingProgress progress_;
};

TEST_F(DemImportTest, FilesBecomeFilesOfTheirLayersAndAFailureIsNoEnd) {
    const DemToImport bad{folder_.Write(L"bad.tif", "no raster"), L"x"};
    DemImport import({Dem(L"a.tif"), bad, Dem(L"b.tif", 3, 2)}, options_, false);
    import.Run(progress_);
    const DemImportResult result = import.Result();
    EXPECT_FALSE(result.stopped);
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[0].layer, L"layer of a.tif");
    const LayerFile& file = result.files[0].file;
    EXPECT_EQ(FileNameOf(file.path), L"a.las");
    EXPECT_TRUE(FileExists(file.path));
    EXPECT_EQ(file.points, 35U);
    EXPECT_EQ(file.version, 12);
    EXPECT_EQ(file.pointFormat, 1);
    EXPECT_FALSE(file.readOnly);
    EXPECT_EQ(file.min[2], 100);
    EXPECT_LT(file.min[0], file.max[0]);
    EXPECT_FALSE(result.files[0].wkt.empty());
    EXPECT_EQ(result.files[1].file.points, 6U);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(result.failures[0].path, bad.path);
    EXPECT_FALSE(result.failures[0].cause.empty());
    EXPECT_EQ(progress_.range, 3000U);
    ASSERT_EQ(progress_.texts.size(), 3U);
    EXPECT_NE(progress_.texts[2].find(L"b.tif"), std::wstring::npos);
}

TEST_F(DemImportTest, StoppingInTheMiddleKeepsWhatIsComplete) {
    progress_.stopAt = 1001;
    DemImport import({Dem(L"a.tif"), Dem(L"b.tif", 600, 900), Dem(L"c.tif")}, options_, true);
    import.Run(progress_);
    const DemImportResult result = import.Result();
    EXPECT_TRUE(result.stopped);
    ASSERT_EQ(result.files.size(), 1U);
    EXPECT_TRUE(result.files[0].file.readOnly);
    EXPECT_TRUE(result.failures.empty());
    std::size_t written = 0;
    EXPECT_EQ(ListFolder(options_.outputFolder, [&written](const FolderEntry&) { return ++written > 0; }), 0);
    EXPECT_EQ(written, 1U) << "something half made was left";
}

TEST_F(DemImportTest, RastersOfOneNameGiveFilesOfTheirOwn) {
    DemImport import({Dem(L"a.tif"), Dem(L"a.tif")}, options_, true);
    import.Run(progress_);
    const DemImportResult result = import.Result();
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_NE(result.files[0].file.path, result.files[1].file.path);
}

TEST(FailureText, NamesEachFileOnceAndEndsBeforeItIsTooLong) {
    std::vector<FileFailure> failures = {{L"/a/1.tif", L"'/a/1.tif' is empty."},
                                         {L"/a/2.tif", L"The disk is full."}};
    EXPECT_EQ(FailureText(L"These:", failures),
              L"These:\n\n'/a/1.tif' is empty.\n/a/2.tif\n    The disk is full.");
    failures.resize(500, failures.back());
    const std::wstring text = FailureText(L"These:", failures);
    EXPECT_LT(std::ranges::count(text, L'\n'), 40);
    EXPECT_NE(text.find(L"488"), std::wstring::npos) << "how many more there are";
}

}  // namespace
}  // namespace orvex
