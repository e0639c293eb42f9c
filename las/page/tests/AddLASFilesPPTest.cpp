#include "las/page/AddLASFilesPP.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QTextEdit>
#include <QUrl>
#include <filesystem>

#include "las/LasColumns.h"
#include "las/page/LasPageTasks.h"
#include "las/page/tests/LasPageFixture.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasPage;
using ::testing::SizeIs;

TEST_F(LasPage, EveryControlIsThereWithCaptionAndTooltip) {
    const std::pair<const char*, StringId> captions[] = {{"c252", text::kAddFolder},
                                                         {"c253", text::kAddFiles},
                                                         {"c254", text::kRemove},
                                                         {"c255", text::kClear},
                                                         {"c259", text::kOpenReadOnly},
                                                         {"c260", text::kOpenReadWrite},
                                                         {"c262", text::kLoadFiles},
                                                         {"c263", text::kLoadFootprintsOnly},
                                                         {"c268", text::kPyramidOrvexLas},
                                                         {"c269", text::kPyramidQvr},
                                                         {"c270", text::kPyramidNone},
                                                         {"c280", text::kAppendToCompatibleLayers},
                                                         {"c281", text::kIgnoreIncompatibleCrs},
                                                         {"c283", text::kLoadCorruptFiles},
                                                         {"c284", text::kConvertQvr},
                                                         {"c376", text::kOriginalsOverwrite},
                                                         {"c377", text::kOriginalsBackup},
                                                         {"c378", text::kOriginalsBackupCompress},
                                                         {"c417", text::kRecreateOrvexLas}};
    for (const auto& [name, id] : captions) {
        auto* button = Find<QAbstractButton>(name);
        QString caption = button->text();
        caption.remove(QRegularExpression(QStringLiteral("&(?!&)(?<!&&)")));
        EXPECT_EQ(ToWide(caption), Text(id)) << name;
        EXPECT_FALSE(button->toolTip().isEmpty()) << name;
    }
    for (const char* name :
         {"c247", "c248", "c249", "c250", "c251", "c258", "c261", "c264", "c266", "c267", "c282", "c375"}) {
        Find<QWidget>(name);
    }
    EXPECT_EQ(ToWide(Grid().ShownMessage()), Text(text::kLasEmptyGrid));
    for (const char* name : {"c254", "c255", "c249"}) {
        EXPECT_FALSE(Enabled(name)) << name;
    }
}

TEST_F(LasPage, TheTabKeyGoesFromTopToBottom) {
    QStringList order;
    QWidget* widget = page.get();
    do {
        widget = widget->nextInFocusChain();
        if (QRegularExpression(QStringLiteral("c[0-9]+|detailsTabs"))
                .match(widget->objectName())
                .hasMatch() &&
            (widget->focusPolicy() & Qt::TabFocus) != 0) {
            order.append(widget->objectName());
        }
    } while (widget != page.get());
    EXPECT_EQ(order.join(' '),
              "c253 c252 c254 c255 c248 c249 c250 detailsTabs c259 c260 c262 c263 c280 c281 c283 c267 c268 "
              "c269 c270 "
              "c284 c417 c376 c377 c378");
}

TEST_F(LasPage, PickedFilesAreListedOnceWhateverTheirLetterCase) {
    const std::wstring a = Las(L"a.las");
    const std::wstring upper = FolderOf(a) + L"/A.LAS";
    PickAndAdd({a, upper, Las(L"b.las")});
    PickAndAdd({upper, a});
    EXPECT_THAT(Names(), ElementsAre(L"a.las", L"b.las"));
    EXPECT_THAT(prompts.shown, IsEmpty());
    ASSERT_FALSE(pickers.asked.empty());
    EXPECT_EQ(pickers.asked[0].filters[0].caption, L"LAS Files (*.las)");
    EXPECT_EQ(pickers.asked[0].bufferCharacters, 130261U);
    EXPECT_TRUE(Enabled("c255"));
}

TEST_F(LasPage, ALazFileAndItsLasFileAreOneFile) {
    const std::wstring laz = Laz(L"a.laz");
    const std::wstring las = Las(L"a.las");
    PickAndAdd({las});
    PickAndAdd({laz});
    EXPECT_THAT(Names(), ElementsAre(L"a.las"));
    Click("c255");
    PickAndAdd({laz, las});
    EXPECT_THAT(Names(), ElementsAre(L"a.laz"));
}

TEST_F(LasPage, PickerFailuresAreToldAndAddNothing) {
    const std::pair<PickOutcome, StringId> cases[] = {
        {PickOutcome::BufferTooSmall, text::kLasTooManySelected},
        {PickOutcome::OutOfMemory, text::kPickerOutOfMemory}};
    for (const auto& [outcome, text] : cases) {
        pickers.files.push_back({outcome, {}});
        Click("c253");
        ASSERT_FALSE(prompts.shown.empty());
        EXPECT_EQ(prompts.shown.back().text, Text(text));
        EXPECT_EQ(prompts.shown.back().caption, Text(text::kPickerCaption));
        EXPECT_EQ(prompts.shown.back().icon, PromptIcon::Error);
    }
    Click("c253");
    EXPECT_THAT(prompts.shown, SizeIs(2)) << "a cancelled picker says nothing";
    EXPECT_EQ(page->Model().rowCount(), 0);
}

TEST_F(LasPage, TheTenthRowAsksOnceWhetherToGoOn) {
    prompts.answers = {PromptAnswer::No};
    const auto paths = ManyLas(12);
    PickAndAdd(paths);
    EXPECT_EQ(page->Model().rowCount(), 10);
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, FormatText(Text(text::kLasManyFilesQuestion), {12}));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kLasManyFilesCaption));
    EXPECT_THAT(Layers(), Contains(L"LAS Layer_1").Times(10)) << "what was added has its layer";
    PickAndAdd(paths);
    EXPECT_EQ(page->Model().rowCount(), 12);
    EXPECT_THAT(prompts.shown, SizeIs(1));
}

TEST_F(LasPage, EscapeKeepsWhatWasAddedUntilThen) {
    constexpr int kMoreThanWait = 900;  // than can be read ahead of the rows
    QObject::connect(&page->Model(), &GridModel::RecordsChanged, [this] { progress.Stop(); });
    PickAndAdd(ManyLas(kMoreThanWait));
    EXPECT_GT(page->Model().rowCount(), 0);
    EXPECT_LT(page->Model().rowCount(), kMoreThanWait);
    EXPECT_FALSE(page->Model().Rows().front().layer.empty());
    EXPECT_TRUE(Enabled("c253")) << "the page is usable again";
}

TEST_F(LasPage, AFolderIsSearchedAsTheAnswerSays) {
    Las(L"in/a.las");
    Laz(L"b.laz");
    Las(L"in/deep/c.LAS");
    folder.Write(L"in/readme.txt", "no LAS file");
    std::filesystem::rename(folder.Path() / "b.laz", folder.Path() / "in" / "b.laz");
    const struct {
        PromptAnswer answer;
        std::vector<std::wstring> names;
    } cases[] = {{PromptAnswer::Cancel, {}},
                 {PromptAnswer::No, {L"a.las", L"b.laz"}},
                 {PromptAnswer::Yes, {L"a.las", L"b.laz", L"c.LAS"}}};
    for (const auto& c : cases) {
        pickers.folders = {folder.Name(L"in")};
        prompts.answers = {c.answer};
        Click("c252");
        EXPECT_THAT(Names(), ::testing::UnorderedElementsAreArray(c.names));
        EXPECT_EQ(prompts.shown.back().text, Text(text::kLasSubfoldersQuestion));
        EXPECT_EQ(prompts.shown.back().buttons, PromptButtons::YesNoCancel);
        page->Release();
    }
}

TEST_F(LasPage, DroppedFilesAreAddedByTheirExtension) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(ToQString(Las(L"a.LAS"))),
                  QUrl::fromLocalFile(ToQString(Laz(L"b.laz"))),
                  QUrl::fromLocalFile(ToQString(folder.Write(L"c.txt", "text")))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page.get(), &drop);
    EXPECT_THAT(Names(), ElementsAre(L"a.LAS", L"b.laz"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, FormatText(Text(text::kLasOthersLeftOut), {1}))
        << "c.txt is no LAS file";
    EXPECT_TRUE(page->Accepts(folder.Name({})));
    EXPECT_FALSE(page->Accepts(L"/nowhere/c.tif"));
}

TEST_F(LasPage, AFolderWithoutLasFilesIsTold) {
    folder.Write(L"in/readme.txt", "text");
    pickers.folders = {folder.Name(L"in")};
    Click("c252");
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[1].text, Text(text::kLasFolderEmpty));
    EXPECT_EQ(prompts.shown[1].icon, PromptIcon::Information);
}

TEST(LasPageTasks, AFailureNamesItsFileOnceAndALongListIsCut) {
    std::vector<LasFileFailure> failures(12, {L"/a.laz", L"The disk is full."});
    failures[0].cause = L"/a.laz is broken.";
    const std::wstring text = OpenFailuresPrompt(failures).text;
    EXPECT_TRUE(text.starts_with(Text(text::kLasOpenModeFailed) +
                                 L"\n\n/a.laz is broken.\n/a.laz: The disk is full.\n"));
    EXPECT_TRUE(text.ends_with(L"\n" + FormatText(Text(text::kMoreItems), {2})));
}

TEST_F(LasPage, RemovingFreesTheRowsAndNamesTheLayersAnew) {
    PickAndAdd({Las(L"a.las", 25832), Las(L"b.las", 28992), Las(L"c.las", 28992)});
    EXPECT_THAT(Layers(), ElementsAre(L"LAS Layer_1", L"LAS Layer_2", L"LAS Layer_2"));
    Grid().SelectRows({0});
    EXPECT_TRUE(Enabled("c254"));
    Click("c254");
    EXPECT_THAT(Names(), ElementsAre(L"b.las", L"c.las"));
    EXPECT_THAT(Layers(), ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
    EXPECT_THAT(Grid().SelectedRows(), IsEmpty());
    EXPECT_FALSE(Enabled("c254"));
    Click("c255");
    EXPECT_EQ(page->Model().rowCount(), 0);
    EXPECT_FALSE(Enabled("c255"));
}

TEST_F(LasPage, TheLayerOptionsRenameAtOnce) {
    const std::wstring a = Las(L"a.las");
    params.existingLasLayers = {{L"Survey", FromUtf8(InspectLasFile(a).crs->sourceWkt)}};
    PickAndAdd({a, Las(L"b.las", 28992)});
    EXPECT_THAT(Layers(), ElementsAre(L"Survey", L"LAS Layer_1"));
    Check("c281");
    EXPECT_THAT(Layers(), ElementsAre(L"Survey", L"Survey"));
    Check("c280");
    EXPECT_THAT(Layers(), ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
}

TEST_F(LasPage, OpenModeAndPyramidTypeDecideWhatCanBeChosen) {
    EXPECT_FALSE(Enabled("c268"));
    Check("c260");
    EXPECT_TRUE(Enabled("c268"));
    EXPECT_TRUE(Enabled("c377"));
    Check("c269");
    EXPECT_FALSE(Enabled("c377"));
    EXPECT_FALSE(Enabled("c284"));
    Check("c268");
    EXPECT_TRUE(Enabled("c417"));
    Check("c263");
    EXPECT_FALSE(Enabled("c268"));
}

TEST_F(LasPage, DetailColumnsAreToggledAndRemembered) {
    auto* toggle = Find<QAbstractButton>("c248");
    EXPECT_EQ(toggle->text(), ">>");
    EXPECT_FALSE(Grid().DetailColumnsShown());
    Click("c248");
    EXPECT_EQ(toggle->text(), "<<");
    EXPECT_TRUE(Grid().IsColumnShown(IndexOf(LasColumn::Software)));
    EXPECT_FALSE(Grid().IsColumnShown(IndexOf(LasColumn::Path)));
    ASSERT_TRUE(page->ValidateAndStore());
    MakePage();
    EXPECT_TRUE(Grid().DetailColumnsShown());
    Click("c248");
    EXPECT_FALSE(Grid().IsColumnShown(IndexOf(LasColumn::Software)));
}

TEST_F(LasPage, RefreshReadsTheFilesAgain) {
    const std::wstring path = Las(L"a.las");
    PickAndAdd({path, Las(L"b.las")});
    folder.Write(L"a.las", testing::LasBuilder(14, 6).AddPoints(25).Build());
    Click("c249");
    EXPECT_EQ(page->Model().Rows()[0].inspection.file->GetPointCount(), 25U);
    EXPECT_THAT(Names(), ElementsAre(L"a.las", L"b.las"));
    EXPECT_THAT(Layers(), ElementsAre(L"LAS Layer_1", L"LAS Layer_2"));
}

TEST_F(LasPage, TheDetailsFollowTheSelection) {
    PickAndAdd({Las(L"a.las"), Las(L"b.las")});
    auto* overview = Find<QTextEdit>("detailsOverview");
    Grid().SelectRows({1});
    EXPECT_THAT(ToWide(Find<QTextEdit>("detailsCrs")->toPlainText()), HasSubstr(L"25832"));
    EXPECT_THAT(ToWide(Find<QPlainTextEdit>("detailsRecords")->toPlainText()), HasSubstr(L"LASF_Projection"));
    EXPECT_THAT(ToWide(overview->toPlainText()), HasSubstr(Text(text::kLasDetailsOffset)));
    Grid().SelectRows({0, 1});
    EXPECT_THAT(ToWide(overview->toPlainText()), HasSubstr(L"18"));
    Grid().ClearSelection();
    EXPECT_EQ(ToWide(overview->toPlainText()), Text(text::kLasDetailsNoSelection));
}

TEST_F(LasPage, TheDetailsPaneRemembersThatItWasFolded) {
    auto* tabs = Find<QWidget>("detailsTabs");
    EXPECT_TRUE(tabs->isVisible());
    const int gridHeight = Grid().height();
    Click("detailsFold");
    EXPECT_FALSE(tabs->isVisible());
    EXPECT_GT(Grid().height(), gridHeight + 100) << "the grid takes the room";
    MakePage();
    EXPECT_FALSE(Find<QWidget>("detailsTabs")->isVisible());
    Click("detailsFold");
    EXPECT_TRUE(Find<QWidget>("detailsTabs")->isVisible());
    const int paneHeight = Find<QWidget>("detailsPane")->height();
    page->resize(800, 300);
    EXPECT_FALSE(Find<QWidget>("detailsTabs")->isVisible()) << "no room";
    page->resize(1000, 700);
    EXPECT_TRUE(Find<QWidget>("detailsTabs")->isVisible());
    EXPECT_NEAR(Find<QWidget>("detailsPane")->height(), paneHeight, 30) << "as high as before";
}

TEST_F(LasPage, TheMnemonicOfTheCaptionLeadsToTheGrid) {
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    Find<QWidget>("c253")->setFocus();
    const auto* caption = Find<QLabel>("c247");
    const QString text = caption->text();
    QTest::keyClick(page.get(), text[text.indexOf('&') + 1].toLatin1(), Qt::AltModifier);
    EXPECT_TRUE(Grid().Table()->hasFocus());
}

TEST_F(LasPage, F1OpensTheManual) {
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    QTest::keyClick(Find<QWidget>("c253"), Qt::Key_F1);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::LasFiles));
}

TEST_F(LasPage, F1OpensTheManualFromBesideThePage) {
    QWidget window;
    QHBoxLayout layout(&window);
    QPushButton ok;
    layout.addWidget(page.get());
    layout.addWidget(&ok);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&ok, Qt::Key_F1);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::LasFiles));
    page->hide();
    QTest::keyClick(&ok, Qt::Key_F1);
    EXPECT_THAT(help.shown, SizeIs(1)) << "a page that is hidden keeps quiet";
    page->setParent(nullptr);
}

}  // namespace
}  // namespace orvex
