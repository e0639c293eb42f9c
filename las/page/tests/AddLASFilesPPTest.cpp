// What the LAS page has of its own; LasPageContractTest.cpp has what it shares with the other pages.
#include "las/page/AddLASFilesPP.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <regex>

#include "dialog/testing/PageFixture.h"
#include "host/utilities/testing/LazSamples.h"
#include "las/testing/LasBuilder.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class LasPage : public testing::PageFixture {
  protected:
    LasPage() : PageFixture(testing::MakePage<AddLASFilesPP>) {}

    std::wstring Las(const std::wstring& name, int epsg = 25832, std::size_t points = 9) const {
        return folder.Write(name, testing::LasBuilder(12, 1)
                                      .AddPoints(points)
                                      .ProjectedEpsg(static_cast<std::uint16_t>(epsg))
                                      .Build());
    }
    std::wstring Laz(const std::wstring& name) const {
        testing::WriteSample(folder.Name(name), {}, true);
        return folder.Name(name);
    }
    const std::vector<LasRow>& Rows() const {
        return static_cast<const AddLASFilesPP*>(page)->Model().Rows();
    }
    QString Details(const char* tab) const { return Find<QTextEdit>(tab)->toPlainText(); }
    /// A number in the details: plain text has blanks for no-break spaces, which may group its digits.
    static std::wstring Grouped(std::uint64_t number) {
        return ToWide(ToQString(GroupedNumber(number)).replace(QChar::Nbsp, QChar::Space));
    }
};

TEST_F(LasPage, ALazFileAndItsLasFileAreOneFile) {
    const std::wstring laz = Laz(L"a.laz");
    const std::wstring las = Las(L"a.las");
    page->AddPaths({las});
    page->AddPaths({laz});
    EXPECT_THAT(Names(), ElementsAre(L"a.las"));
    Click(255);
    page->AddPaths({laz, las});
    EXPECT_THAT(Names(), ElementsAre(L"a.laz"));
}

TEST_F(LasPage, LayersFollowRowsAndOptions) {
    const std::wstring a = Las(L"a.las");
    given.existingLasLayers = {{L"Survey", FromUtf8(InspectLasFile(a).crs->sourceWkt)}};
    Open();
    page->AddPaths({Las(L"b.las", 28992), a, Las(L"c.las", 2056)});
    EXPECT_THAT(Shown("layer"), ElementsAre(L"LAS Layer_1", L"Survey", L"LAS Layer_2"));
    Grid().SelectRows({0});
    Click(254);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Survey", L"LAS Layer_1"));
    Check(281);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Survey", L"Survey"));
    Check(280);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
    ASSERT_TRUE(Press("ok"));
    EXPECT_EQ(params.lasFileLayers.at(a), L"LAS Layer_1");
}

TEST_F(LasPage, ConditionsFindFiles) {
    page->AddPaths({Las(L"a.las"), Las(L"b.las", 28992, 2000)});
    EXPECT_THAT(Found(L"points > 1e3"), ElementsAre(L"b.las"));
    EXPECT_THAT(Found(L"crs = 25832"), ElementsAre(L"a.las"));
    EXPECT_THAT(Found(L"size < 0.01"), ElementsAre(L"a.las"));
    EXPECT_THAT(Found(L"size < 1 -crs=25832"), ElementsAre(L"b.las"));
}

TEST_F(LasPage, OpenModeAndPyramidTypeDecideWhatCanBeChosen) {
    const struct {
        int open;
        int load;
        int type;
        bool inside;  ///< pyramids in the LAS files
        bool beside;  ///< or beside them
        bool orvexLas;
    } cases[] = {
        {259, 262, 268, false, true, false},  {259, 262, 269, false, true, false},
        {259, 263, 268, false, false, false}, {260, 263, 268, false, false, false},
        {260, 262, 268, true, true, true},    {260, 262, 269, true, true, false},
        {260, 262, 270, true, true, false},
    };
    for (const auto& c : cases) {
        for (const int id : {c.open, c.load, c.type}) {
            Find<QAbstractButton>(id)->setChecked(true);
        }
        EXPECT_EQ(Enabled(268), c.inside);
        EXPECT_TRUE(Enabled(269) == c.beside && Enabled(270) == c.beside);
        for (const int id : {284, 375, 376, 377, 378, 417}) {
            EXPECT_EQ(Enabled(id), c.orvexLas) << id;
        }
        for (const int id : {259, 262, 266, 267, 280, 281, 283}) {
            EXPECT_TRUE(Enabled(id)) << id;
        }
    }
}

// Makers write the same CRS with and without its codes.
TEST_F(LasPage, TheCodeOfACrsIsFoundAfterItsRowIsShown) {
    const std::string coded = OrvexUtilities::CrsGetPrettyWktFromEPSG(25832);
    const std::string plain = std::regex_replace(coded, std::regex(R"(,\s*AUTHORITY\["EPSG","\d+"\])"), "");
    for (const auto& [name, wkt] : {std::pair(L"coded.las", coded), std::pair(L"plain.las", plain)}) {
        folder.Write(name, testing::LasBuilder(14, 6).AddPoints(2).Wkt(wkt).Build());
    }
    page->AddPaths({folder.Name(L"coded.las"), folder.Name(L"plain.las")});
    EXPECT_THAT(Shown("epsg"), ElementsAre(L"EPSG:25832", L"EPSG:25832"));
    EXPECT_THAT(Shown("layer"), ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
}

TEST_F(LasPage, CrssThatShareANameAreNotAddedUp) {
    for (const wchar_t* unit : {L"1", L"0.3048"}) {
        const std::string wkt = "LOCAL_CS[\"Site grid\",UNIT[\"unit\"," + ToUtf8(unit) + "]]";
        page->AddPaths({folder.Write(std::wstring(unit) + L".las",
                                     testing::LasBuilder(14, 6).AddPoints(1500).Wkt(wkt).Build())});
    }
    EXPECT_THAT(ToWide(Details("detailsOverview")), HasSubstr(Grouped(1500)));
    Grid().SelectRows({0, 1});
    const std::wstring totals = ToWide(Details("detailsOverview"));
    EXPECT_THAT(totals, HasSubstr(Grouped(3000)));
    EXPECT_THAT(Shown("points"), ElementsAre(L"1500", L"1500"))
        << "digits are grouped outside the cells only";
    const int points = ColumnNamed("points");
    EXPECT_THAT(ToWide(Model().data(Model().index(0, points), Qt::ToolTipRole).toString()),
                HasSubstr(GroupedNumber(1500)));
    EXPECT_EQ(Model().FooterText(points), GroupedNumber(3000));
    EXPECT_THAT(totals, HasSubstr(L"Site grid"));
    EXPECT_THAT(totals, Not(HasSubstr(Text(text::kLasMinX))));
}

TEST_F(LasPage, AWktThatCannotBeReadIsShownAsItIs) {
    page->AddPaths({folder.Write(
        L"a.las",
        testing::LasBuilder(14, 6).AddPoints(2).ProjectedEpsg(25832).Wkt("PROJCS[\"<cut>").Build())});
    const std::wstring shown = ToWide(Details("detailsCrs"));
    EXPECT_THAT(shown, HasSubstr(L"ETRS89 / UTM zone 32N"));
    EXPECT_THAT(shown, HasSubstr(Text(text::kCrsSourceGeoKeys)));
    EXPECT_THAT(shown, HasSubstr(Text(text::kDetailsUnreadableWkt)));
    EXPECT_THAT(shown, HasSubstr(L"PROJCS[\"<cut>"));
}

TEST_F(LasPage, FilesWithErrorsAreMarkedForTheHost) {
    const std::wstring good = Las(L"good.las");
    const std::wstring cut = Las(L"cut.las");
    std::filesystem::resize_file(ToPath(cut), std::filesystem::file_size(ToPath(cut)) - 1);
    page->AddPaths({good, cut});
    const std::wstring condition = LoadConditionText();
    EXPECT_THAT(FindingsText(Rows()[1]), HasSubstr(condition));
    EXPECT_THAT(FindingsText(Rows()[0]), Not(HasSubstr(condition)));
    Grid().SelectRows({1});
    EXPECT_THAT(ToWide(Details("detailsOverview")), HasSubstr(condition));
    Check(260);  // opens the files anew
    ASSERT_TRUE(Press("ok"));
    EXPECT_FALSE(params.lasFileDetails.at(good)->IsDamaged());
    EXPECT_TRUE(params.lasFileDetails.at(cut)->IsDamaged());
}

TEST_F(LasPage, OverwritingIsPendingOnlyForAConversionWithoutBackup) {
    for (int bits = 0; bits < 8; ++bits) {
        options.Put<char>(opt2ConvertExistingQVRToOrvexLAS, (bits & 1) != 0);
        options.Put<std::int32_t>(opt2PyramidType, (bits & 2) != 0 ? kPyramidOrvexLas : kPyramidQvr);
        options.Put<std::int32_t>(opt2OrvexLASBackupOption,
                                  (bits & 4) != 0 ? kOverwriteOriginals : kBackupOriginals);
        Open();
        ASSERT_TRUE(Press("ok"));
        EXPECT_EQ(params.orvexLasOverwritePending, bits == 7) << bits;
    }
}

TEST_F(LasPage, CompanionFilesAreNeededWhileAFileHasNone) {
    const std::wstring path = Las(L"a.las");
    folder.Write(L"a.qvr", "index");
    EXPECT_FALSE(page->NeedsCompanionFiles());
    page->AddPaths({path, folder.Write(L"bad.las", "no LAS file")});
    EXPECT_FALSE(page->NeedsCompanionFiles());
    page->AddPaths({Las(L"b.las")});
    EXPECT_TRUE(page->NeedsCompanionFiles());
}

TEST_F(LasPage, ReadWriteOpensTheLasFileOfALazFile) {
    const std::wstring laz = Laz(L"a.laz");
    page->AddPaths({laz});
    Check(260);
    lastPage.atOk = testing::ScriptedPage::AtOk::Refuse;
    EXPECT_FALSE(Press("ok"));
    const LASFile* opened = Rows()[0].file.get();
    lastPage.atOk = testing::ScriptedPage::AtOk::Accept;
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.lasFiles.begin()->second, ElementsAre(L"a.laz")) << "the file that was chosen";
    EXPECT_TRUE(params.lasFileLayers.contains(laz));
    const LasFileInfo* details = params.lasFileDetails.at(laz);
    EXPECT_EQ(details, opened) << "opened once";
    EXPECT_EQ(details->FileName(), folder.Name(L"a.las"));
    EXPECT_FALSE(details->IsReadOnly());
}

TEST_F(LasPage, FilesThatCannotBeOpenedAreNamedInOneMessageThatIsCut) {
    std::vector<std::wstring> paths(12);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        paths[i] = Las(L"tile" + std::to_wstring(i) + L".las");
    }
    page->AddPaths(paths);
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, FormatText(Text(text::kLasManyFilesQuestion), {12}));
    prompts.shown.clear();
    for (const std::wstring& path : paths) {
        std::filesystem::remove(ToPath(path));
    }
    Check(260);
    EXPECT_FALSE(Press("ok"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    const std::wstring& text = prompts.shown[0].text;
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kLasOpenModeCaption));
    EXPECT_TRUE(text.starts_with(Text(text::kLasOpenModeFailed) + L"\n\n" + paths[0] + L": " +
                                 Text(text::kFileMissing)))
        << "its name once";
    EXPECT_TRUE(text.ends_with(L"\n" + FormatText(Text(text::kMoreItems), {2})));
    EXPECT_TRUE(Rows()[0].file->IsReadOnly()) << "all stay as they are";
    EXPECT_THAT(params.lasFiles, IsEmpty());
}

TEST_F(LasPage, TheDetailsTellEverythingOfAFileAndTheTotalsOfSeveral) {
    page->AddPaths({Las(L"a.las"), Las(L"b.las", 25832, 4), Las(L"c.las", 28992), Laz(L"d.laz"),
                    folder.Write(L"bad.las", "no LAS file")});
    Grid().SelectRows({0});
    EXPECT_THAT(ToWide(Details("detailsCrs")), HasSubstr(L"25832"));
    EXPECT_THAT(ToWide(Find<QPlainTextEdit>("detailsRecords")->toPlainText()), HasSubstr(L"LASF_Projection"));
    EXPECT_THAT(ToWide(Details("detailsOverview")), HasSubstr(Text(text::kLasDetailsOffset)));
    Grid().SelectRows({4});
    EXPECT_EQ(ToWide(Find<QPlainTextEdit>("detailsRecords")->toPlainText()),
              Text(text::kDetailsFileUnreadable));
    EXPECT_THAT(ToWide(Details("detailsOverview")), HasSubstr(Rows()[4].summary));
    Grid().SelectRows({0, 1});
    const std::wstring totals = ToWide(Details("detailsOverview"));
    for (const wchar_t* fact : {L"13", L"1000.000", L"2000.000", L"100.000", L"1002.000", L"100.080"}) {
        EXPECT_THAT(totals, HasSubstr(fact));
    }
    Grid().SelectRows({0, 2, 4});
    const std::wstring mixed = ToWide(Details("detailsOverview"));
    EXPECT_THAT(mixed, HasSubstr(Text(text::kTotalsUnreadableFiles))) << "one cannot be read";
    EXPECT_THAT(mixed, Not(HasSubstr(Text(text::kLasMinX)))) << "extents of different systems do not add up";
}

}  // namespace
}  // namespace orvex
