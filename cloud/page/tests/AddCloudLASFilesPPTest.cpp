#include "cloud/page/AddCloudLASFilesPP.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTableView>
#include <QTimer>

#include "cloud/page/tests/CloudPageFixture.h"
#include "support/Format.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(CloudPage, IsLaidOutAsPagesAre) {
    ExpectTextsOfControls();
    ExpectLettersOfTheirOwn();
    ExpectEverythingWithinReach({});
    EXPECT_EQ(ToWide(Grid().ShownMessage()), Text(text::kCloudEmptyGrid));
    EXPECT_EQ(Overview(), Text(text::kCloudNoSelection));
    EXPECT_EQ(Find(351)->toolTip(),
              "Add an Orvex Cloud Layer(s) by browsing Orvex Cloud LAS Layers/Packages or by providing the "
              "Pre-signed S3 URL of the layer to be added.");
    QTest::keyClick(Grid().Table(), Qt::Key_F1);
    Click(356);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::CloudLas, HelpTopic::CloudLas));
}

TEST_F(CloudPage, TheAddButtonOpensItsMenuWhichKeysChooseFrom) {
    auto* menu = page->findChild<QMenu*>("addMenu");
    Click(351);
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(menu->pos(), page->mapToGlobal(QPoint(0, Find(351)->height())));
    std::vector<std::pair<QString, bool>> entries;
    for (const QAction* action : menu->actions()) {
        entries.emplace_back(action->text(), action->isEnabled());
    }
    const auto text = [](unsigned id) { return ToQString(Text(StringId{id})); };
    EXPECT_THAT(entries, ElementsAre(std::pair(text(3361), true), std::pair(text(3362), true),
                                     std::pair(text(3363), false), std::pair(text(3364), false)));
    script.urls = {L"https://store.example/a.las"};
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_FALSE(menu->isVisible());
    EXPECT_THAT(Shown("name"), ElementsAre(L"Cloud LAS_Layer"));
    for (const char* greyed : {"32774", "32776"}) {
        Choose(greyed);
    }
    EXPECT_THAT(pickers.asked, IsEmpty());
    const DialogProgress::Run run(Progress());
    EXPECT_FALSE(Enabled(351));
}

TEST_F(CloudPage, LayersOfTheBrowserAreAddedOncePerUrl) {
    Browse({});
    EXPECT_EQ(Model().rowCount(), 0) << "cancelled";
    Browse({Layer(L"A", L"https://h/a.las"), Layer(L"B", L"https://h/b.las"),
            Layer(L"A again", L"https://h/a.las")});
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B"));
    EXPECT_THAT(Shown("source"), Contains(L"[ OrvexLAS URL ]").Times(2));
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLayersAdded), {2, 1}));
    EXPECT_THAT(Grid().SelectedRows(), IsEmpty());
    Browse({Layer(L"B", L"https://h/b.las"), Layer(L"C", L"https://h/B.las"), Layer(L"D", L"")});
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B", L"C", L"D")) << "letter case counts";
    EXPECT_THAT(Shown("size"), Contains(L"1.500").Times(4));
    EXPECT_EQ(Model().FooterText(ColumnNamed("size")), L"6.000");
    EXPECT_EQ(Model().FooterText(ColumnNamed("name")), FormatText(Text(text::kCloudLayersFooter), {L"4"}));
    const AddFilesParams record = Stored();
    EXPECT_EQ(record.cloudLasLayers,
              (Map{{L"A", L"https://h/a.las"}, {L"B", L"https://h/b.las"}, {L"C", L"https://h/B.las"}}));
    EXPECT_EQ(record.cloudLasLayerValues2, (Map{{L"A", L"id of A"}, {L"B", L"id of B"}, {L"C", L"id of C"}}));
    constexpr int kMany = 10'000;
    std::vector<CloudLayer> many;
    many.reserve(kMany);
    for (int i = 0; i < kMany; ++i) {
        many.push_back(Layer(L"layer " + std::to_wstring(i), L"https://h/" + std::to_wstring(i)));
    }
    Browse(std::move(many));
    EXPECT_EQ(Model().rowCount(), 10'004);
}

TEST_F(CloudPage, AUrlThatIsListedIsAskedForAgain) {
    Browse({Layer(L"A", L"https://h/A.las")});
    script.urls = {L"HTTPS://H/a.LAS", L"https://h/a.las", L"https://h/b.las"};
    Choose("32771");
    EXPECT_THAT(script.typed, ElementsAre(L"", L"HTTPS://H/a.LAS", L"https://h/a.las"));
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kCloudUrlAlreadyListed));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kInvalidInputCaption));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
    EXPECT_THAT(Shown("source"), ElementsAre(L"[ OrvexLAS URL ]", L"[ Pre-Signed URL ]"));
    script.urls = {L"https://h/a.las", std::nullopt};
    Choose("32771");
    EXPECT_EQ(Model().rowCount(), 2) << "cancelled";
}

TEST_F(CloudPage, TheFirstOfANameInTheOrderOfTheGridIsStored) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Enter(L"https://h/1.las");
    Enter(L"https://h/2.las");
    EXPECT_THAT(Shown("state"), ElementsAre(Text(text::kCloudNotInspected), HasSubstr(L"Cloud LAS_Layer")));
    Grid().SelectRows({1});
    EXPECT_THAT(Overview(), HasSubstr(L"Cloud LAS_Layer"));
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", L"https://h/1.las"}}));
    Model().sort(ColumnNamed("url"), Qt::DescendingOrder);
    EXPECT_THAT(Shown("state"), ElementsAre(Text(text::kCloudNotInspected), HasSubstr(L"Cloud LAS_Layer")));
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", L"https://h/2.las"}}));
    Grid().SelectRows({1});
    script.names = {std::nullopt, L"", L"Second"};
    Grid().Table()->setFocus();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(Grid().Table(), Qt::Key_F2);
    }
    EXPECT_EQ(Stored().presignedUrlLayers,
              (Map{{L"Cloud LAS_Layer", L"https://h/2.las"}, {L"Second", L"https://h/1.las"}}));
    EXPECT_TRUE(Press("ok"));
}

TEST_F(CloudPage, AListSortedByStateMarksWhatTheRecordLeavesOut) {
    const auto expectMarks = [this](const char* when) {
        SCOPED_TRACE(when);
        const std::wstring stored = Stored().presignedUrlLayers.at(L"Cloud LAS_Layer");
        const std::wstring mark = FormatText(Text(text::kCloudDuplicateName), {L"Cloud LAS_Layer"});
        const std::vector<std::wstring> urls = Shown("url");
        for (int row = 0; row < Model().rowCount(); ++row) {
            const QModelIndex state = Model().index(row, ColumnNamed("state"));
            const bool isMarked = state.data(Qt::ToolTipRole).toString().contains(ToQString(mark));
            const bool isStored = ShownUrl(stored) == urls[static_cast<std::size_t>(row)];
            EXPECT_NE(isMarked, isStored) << row;
            EXPECT_EQ(isStored, row == 0);
        }
    };
    Enter(L"https://h/1.las");
    Enter(L"https://h/2.las");
    for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        Model().sort(ColumnNamed("state"), order);
        expectMarks("two of a name");
        Enter(kSigned);
        expectMarks("with one of another state");
        Grid().SelectRows({Model().RowOfRecord(2)});
        Click(352);
    }
}

TEST_F(CloudPage, ALinkThatEndsMeanwhileIsToldAndAddedAllTheSame) {
    Enter(kSigned);
    QSignalSpy changed(&Model(), &QAbstractItemModel::dataChanged);
    EXPECT_THAT(Shown("expires"), ElementsAre(L"2026-09-24 13:00"));
    EXPECT_EQ(page->findChild<QTimer*>("expiry")->interval(), kHourMs);
    EXPECT_THAT(Shown("state"),
                ElementsAre(FormatText(Text(text::kCloudLinkExpiresSoon), {L"2026-09-24 13:00"})));
    script.now += kHourMs;
    page->findChild<QTimer*>("expiry")->start(0);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return Shown("state").front() == FormatText(Text(text::kCloudLinkExpired), {L"2026-09-24 13:00"});
    }));
    EXPECT_FALSE(page->findChild<QTimer*>("expiry")->isActive());
    ASSERT_THAT(changed, SizeIs(1));
    EXPECT_EQ(changed[0][0].toModelIndex().column(), ColumnNamed("name")) << "where the icon is";
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", kSigned}}));
    EXPECT_TRUE(Press("ok"));
    EXPECT_THAT(prompts.shown, IsEmpty());
    EXPECT_THAT(prompts.reportsShown, IsEmpty());
}

TEST_F(CloudPage, RemovedRowsComeBackToTheirPlaces) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Browse({Layer(L"A", L"u1"), Layer(L"B", L"u2"), Layer(L"C", L"u3"), Layer(L"D", L"u4")});
    const auto undo = [this] { QTest::keyClick(Grid().Table(), Qt::Key_Z, Qt::ControlModifier); };
    undo();
    EXPECT_EQ(Model().rowCount(), 4);
    Grid().SelectRows({0, 2});
    Click(352);
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D"));
    Click(355);
    EXPECT_THAT(Grid().SelectedRows(), SizeIs(2));
    Click(353);
    EXPECT_EQ(Model().rowCount(), 0);
    for (const int id : {352, 353, 355, 43550}) {
        EXPECT_FALSE(Enabled(id)) << id;
    }
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D"));
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B", L"C", L"D"));
    EXPECT_THAT(Grid().SelectedRows(), ElementsAre(0, 2));
    EXPECT_EQ(Stored().cloudLasLayers.at(L"C"), L"u3");
    Click(352);
    Browse({Layer(L"E", L"u5")});
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D", L"E")) << "places that are others' now";
    page->Release();
    undo();
    EXPECT_EQ(Model().rowCount(), 0);
}

TEST_F(CloudPage, AFailureIsReportedUnderTheNameOfItsHandler) {
    Enter(L"https://h/a.las");
    Grid().SelectRows({0});
    script.failure = L"no more";
    const std::pair<const char*, std::wstring> handlers[] = {
        {"32773", L"OnBrowseLayersInOrvexCloud"}, {"32771", L"OnPresignedUrl"}, {"rename", L"OnRename"}};
    for (const auto& [action, name] : handlers) {
        page->findChild<QAction*>(QLatin1String(action))->trigger();
        ASSERT_FALSE(prompts.shown.empty());
        EXPECT_EQ(prompts.shown.back().text, L"An exception occurred in " + name + L"():\n\nno more");
    }
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Model().rowCount(), 1);
}

/// The page with its own dialogs.
class CloudPageDialogs : public testing::PageFixture {
  protected:
    CloudPageDialogs() : PageFixture(testing::MakePage<AddCloudLASFilesPP>) {}

    /// Runs an action while `answer` deals with the dialog that it opens.
    void Run(const char* action, const std::function<void(QDialog& asked)>& answer) const {
        bool isAsked = false;
        QTimer::singleShot(0, dialog.get(), [&] {
            auto* asked = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            isAsked = asked != nullptr && asked != dialog.get();
            if (isAsked) {
                answer(*asked);
            }
        });
        page->findChild<QAction*>(QLatin1String(action))->trigger();
        EXPECT_TRUE(isAsked) << action;
    }
};

TEST_F(CloudPageDialogs, GiveThePageWhatWasAnswered) {
    const auto enter = [](const QString& text) {
        return [text](QDialog& asked) {
            asked.findChild<QLineEdit*>()->setText(text);
            QTest::keyClick(asked.findChild<QLineEdit*>(), Qt::Key_Return);
        };
    };
    Run("32771", enter(" https://h/a.las "));
    Run("32771", [](QDialog& asked) { asked.reject(); });
    Run("32773", [](QDialog& asked) { asked.reject(); });
    EXPECT_THAT(Shown("name"), ElementsAre(L"Cloud LAS_Layer"));
    Grid().SelectRows({0});
    Run("rename", [](QDialog& asked) { asked.reject(); });
    Run("rename", enter("  River  "));
    EXPECT_TRUE(Press("ok"));
    EXPECT_EQ(params.presignedUrlLayers, (Map{{L"River", L"https://h/a.las"}}));
}

TEST_F(CloudPage, FilesAreNotAccepted) {
    EXPECT_FALSE(page->acceptDrops());
    EXPECT_FALSE(page->Accepts(L"/data/a.las"));
    page->AddPaths({L"/data/a.las"});
    EXPECT_EQ(Model().rowCount(), 0);
}

}  // namespace
}  // namespace orvex
