#include "raster/page/AddRasterFilesPP.h"

#include <gmock/gmock.h>

#include <QTextEdit>
#include <stdexcept>

#include "raster/page/tests/RasterPageFixture.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kRefresh = 437;
constexpr int kAppend = 441;
constexpr int kPyramid = 442;

class RasterPage : public testing::RasterPageFixture {
  protected:
    RasterPage() : RasterPageFixture(testing::MakePage<AddRasterFilesPP>) {}

    std::string PaneText(const char* tab) const { return Find<QTextEdit>(tab)->toPlainText().toStdString(); }
};

TEST_F(RasterPage, FilesAreDescribedAndGetCompatibleLayersOfTheProject) {
    given.existingRasterLayers = {{L"Ortho 2020", Wkt(25832)}};
    Open();
    page->AddPaths({Tif(L"a.tif"), Tif(L"b.tif", 28992), BadTif(L"c.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif", L"c.tif"));
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Ortho 2020", L"Raster Layer_1", L""));
    EXPECT_THAT(Shown("imageSize"), ElementsAre(L"20 x 10", L"20 x 10", L""));
    EXPECT_THAT(prompts.shown, IsEmpty()) << "one bad file is no reason for a message";
    EXPECT_EQ(Grid().ColumnWidth(ColumnNamed("summary")), 300) << "columns keep their widths";
    EXPECT_THAT(PaneText("rasterOverview"), HasSubstr("20 x 10"));
    EXPECT_THAT(PaneText("rasterCrs"), HasSubstr("25832"));
    EXPECT_THAT(PaneText("rasterBands"), HasSubstr("Byte"));
    Check(kAppend);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Raster Layer_1", L"Raster Layer_2", L""));
}

/// A host's object that always throws.
class ThrowingInformation final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring&, RasterProperties&, std::wstring&) override {
        throw std::runtime_error("the driver failed");
    }
};

TEST_F(RasterPage, AnExceptionWhileReadingIsReportedOncePerRunAndTheFilesAreListed) {
    hostObjects.rasterInformation = [](std::int32_t&) { return std::make_unique<ThrowingInformation>(); };
    Open();
    page->AddPaths({Tif(L"a.tif"), Tif(L"b.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kRasterPropertiesFailed));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kRasterPropertiesFailed));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
    Click(kRefresh);
    EXPECT_THAT(prompts.shown, SizeIs(2));
}

TEST_F(RasterPage, TheHostGetsPropertiesAndLayers) {
    const std::wstring good = Tif(L"a.tif");
    page->AddPaths({good, BadTif(L"broken.tif")});
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.rasterFileLayers, ElementsAre(std::pair(good, std::wstring(L"Raster Layer_1"))));
    ASSERT_THAT(params.rasterFileDetails, SizeIs(1));
    EXPECT_EQ(params.rasterFileDetails.at(good)->FileName(), good);
    EXPECT_EQ(params.rasterFileDetails.at(good)->Properties().width, 20);
}

TEST_F(RasterPage, WithoutRowsTheOptionsAreStoredAllTheSame) {
    Check(kAppend);
    ASSERT_TRUE(Press("ok"));
    EXPECT_FALSE(params.rasterAppend);
    EXPECT_TRUE(params.rasterPyramid);
    EXPECT_THAT(params.rasterFiles, IsEmpty());
    Open();
    EXPECT_FALSE(Find<QAbstractButton>(kAppend)->isChecked());
    EXPECT_TRUE(Find<QAbstractButton>(kPyramid)->isChecked());
}

}  // namespace
}  // namespace orvex
