#include "dialog/AddFilesDlg.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QTabBar>
#include <QTimer>
#include <QUrl>

#include "dialog/tests/ShellFixture.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(Shell, TabsAreDenseAndInOrder) {
    struct Case {
        std::vector<bool AddFilesParams::*> on;
        std::vector<PageKind> kinds;
    };
    using P = AddFilesParams;
    const Case cases[] = {
        {{}, {PageKind::Las}},
        {{&P::showCloudTab}, {PageKind::Las, PageKind::CloudLas}},
        {{&P::showPhotoTab, &P::showRasterTab}, {PageKind::Las, PageKind::Raster, PageKind::Photo}},
        {{&P::showRasterTab, &P::showPhotoTab, &P::showFeatureTab, &P::showDemTab, &P::showCloudTab},
         {PageKind::Las, PageKind::Raster, PageKind::Feature, PageKind::Dem, PageKind::Photo,
          PageKind::CloudLas}},
    };
    for (const Case& c : cases) {
        params = {};
        for (auto pageSwitch : c.on) {
            params.*pageSwitch = true;
        }
        const auto dialog = Make();
        std::vector<PageKind> kinds;
        kinds.reserve(c.kinds.size());
        for (int i = 0; i < dialog->Tabs().count(); ++i) {
            kinds.push_back(dialog->Tabs().KindOfTab(i));
        }
        EXPECT_EQ(kinds, c.kinds);
    }
}

TEST_F(Shell, OnlyTheSelectedTabHasItsImageAndItsPage) {
    AllOn();
    const auto dialog = Open();
    CTabCtrlEx& tabs = dialog->Tabs();
    const auto key = [&](int tab) { return tabs.tabIcon(tab).pixmap(16).toImage(); };
    const QImage inactive = key(1);
    QTest::mouseClick(tabs.tabBar(), Qt::LeftButton, {}, tabs.tabBar()->tabRect(1).center());
    EXPECT_EQ(tabs.ShownIndex(), 1);
    EXPECT_EQ(key(0), inactive);
    EXPECT_NE(key(1), inactive);
    EXPECT_TRUE(dialog->findChild<QWidget*>(QStringLiteral("page385"))->isVisible());
    EXPECT_TRUE(dialog->findChild<QWidget*>(QStringLiteral("page385"))->isEnabled());
    EXPECT_FALSE(dialog->findChild<QWidget*>(QStringLiteral("page363"))->isVisible());
    EXPECT_FALSE(dialog->findChild<QWidget*>(QStringLiteral("page363"))->isEnabled());
    tabs.Select(5);
    EXPECT_TRUE(tabs.tabIcon(5).isNull()) << "the list has no image for the cloud tab";
}

TEST_F(Shell, CtrlTabChangesTheTabFromTheButtonsToo) {
    params.showRasterTab = params.showDemTab = true;
    const auto dialog = Open();
    CTabCtrlEx& tabs = dialog->Tabs();
    auto* ok = dialog->findChild<QPushButton*>(QStringLiteral("ok"));
    for (const int expected : {1, 2, 0}) {
        QTest::keyClick(ok, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(tabs.ShownIndex(), expected);
    }
    QTest::keyClick(ok, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.ShownIndex(), 2);
}

TEST_F(Shell, InitialTabSelectsATabOrNone) {
    params.showCloudTab = true;
    struct Case {
        int initial;
        int shown;
    };
    for (const Case& c : {Case{0, 0}, Case{1, 1}, Case{2, -1}, Case{-1, -1}, Case{1000, -1}}) {
        params.initialTab = c.initial;
        const auto dialog = Open();
        EXPECT_EQ(dialog->Tabs().ShownIndex(), c.shown) << c.initial;
        EXPECT_EQ(dialog->findChild<QWidget*>(QStringLiteral("page363"))->isVisible(), c.shown == 0)
            << c.initial;
        EXPECT_EQ(dialog->findChild<QWidget*>(QStringLiteral("page410"))->isVisible(), c.shown == 1)
            << c.initial;
        QTabBar* bar = dialog->Tabs().tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
        EXPECT_EQ(dialog->Tabs().ShownIndex(), 0) << "a click leads out of it";
        EXPECT_TRUE(dialog->findChild<QWidget*>(QStringLiteral("page363"))->isVisible());
        dialog->reject();
        EXPECT_EQ(StoredTab(), 0);
    }
}

TEST_F(Shell, OkAsksThePagesInOrderUntilOneRefuses) {
    AllOn();
    struct Case {
        const char* refuse;
        std::vector<std::string> asked;
        bool closes;
    };
    const Case cases[] = {
        {"las", {"store las"}, false},
        {"dem", {"store las", "store raster", "store feature", "store dem"}, false},
        {"cloud",
         {"store las", "store raster", "store feature", "store dem", "store photo", "store cloud"},
         false},
        {"", {"store las", "store raster", "store feature", "store dem", "store photo", "store cloud"}, true},
    };
    for (const Case& c : cases) {
        journal.lines.clear();
        journal.refuse = c.refuse;
        const auto dialog = Open();
        Press(*dialog, "ok");
        EXPECT_EQ(journal.lines, c.asked) << c.refuse;
        EXPECT_EQ(dialog->isVisible(), !c.closes) << c.refuse;
        EXPECT_EQ(dialog->result() == QDialog::Accepted, c.closes);
    }
}

TEST_F(Shell, APageThatThrowsOnOkKeepsTheDialogOpen) {
    journal.throwOnStore = "las";
    const auto dialog = Open();
    Press(*dialog, "ok");
    EXPECT_TRUE(dialog->isVisible());
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, L"An exception occurred in OnOK():\n\ndisk full");
}

TEST_F(Shell, EveryOtherEndReleasesThePagesThatExist) {
    params.showPhotoTab = true;
    const auto ends = {+[](QDialog& d) { Press(d, "cancel"); }, +[](QDialog& d) { d.close(); },
                       +[](QDialog& d) { QTest::keyClick(&d, Qt::Key_Escape); }};
    for (auto end : ends) {
        journal.lines.clear();
        const auto dialog = Open();
        end(*dialog);
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_THAT(journal.lines, ElementsAre("release las", "release photo"));
    }
}

TEST_F(Shell, AMissingPageIsReportedAndTheOthersWork) {
    params.showRasterTab = params.showDemTab = true;
    pages[1].create = [](const PageContext&) -> std::unique_ptr<AddFilesPage> {
        throw LDataError(L"no settings");
    };
    pages[3].create = [](const PageContext&) { return std::unique_ptr<AddFilesPage>(); };
    const auto dialog = Open();
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[0].text, L"create failed");
    EXPECT_EQ(prompts.shown[0].caption, L"");
    EXPECT_EQ(dialog->Tabs().count(), 3);
    dialog->Tabs().Select(1);
    Press(*dialog, "ok");
    EXPECT_THAT(journal.lines, ElementsAre("store las"));
    EXPECT_EQ(StoredTab(), 1);
}

TEST_F(Shell, DoesNotOpenWithoutTheHostApplication) {
    hostObjects.projectFolderResult = kHostFail;
    EXPECT_EQ(Make()->Initialise(), kHostFail);
    hostObjects.createApplicationResult = kHostClassNotRegistered;
    const auto dialog = Make();
    EXPECT_EQ(dialog->Initialise(), kHostClassNotRegistered);
    EXPECT_FALSE(dialog->Run());
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_NE(prompts.shown[0].text.find(L"80040154"), std::wstring::npos) << "the code is told";
    EXPECT_THAT(journal.lines, ElementsAre("release las"));
    EXPECT_EQ(StoredTab(), std::nullopt) << "what never opened stores nothing";
}

TEST_F(Shell, PlacementComesBackUnlessCtrlIsHeld) {
    {
        const auto dialog = Open();
        EXPECT_EQ(dialog->minimumSize(), QSize(800, 400));
        EXPECT_EQ(dialog->size(), QSize(1024, 768));
        dialog->resize(811, 433);
        dialog->reject();
    }
    EXPECT_EQ(Open()->size(), QSize(811, 433));

    QWidget keyboard;
    keyboard.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&keyboard));
    QTest::keyPress(keyboard.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
    {
        const auto dialog = Open();
        EXPECT_NE(dialog->size(), QSize(811, 433));
        dialog->resize(822, 444);
        dialog->reject();
    }
    QTest::keyRelease(keyboard.windowHandle(), Qt::Key_Control, Qt::NoModifier);
    EXPECT_EQ(Open()->size(), QSize(822, 444)) << "saved on close although Ctrl was held";
}

TEST_F(Shell, AnUnusablePlacementIsIgnoredAndAnUnreachableOneMovedIntoSight) {
    options.WritePlacement(L"AddFilesDlgA", "not a placement");
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(Open()->size(), QSize(1024, 768));
    QWidget far;
    far.setGeometry(QRect(screen.right() + 5000, screen.bottom() + 5000, 810, 410));
    options.WritePlacement(L"AddFilesDlgA", far.saveGeometry().toStdString());
    const auto dialog = Open();
    EXPECT_TRUE(screen.intersects(dialog->geometry()));
    EXPECT_TRUE(screen.contains(dialog->geometry().topLeft() + QPoint(50, 5)));
}

TEST_F(Shell, ARunLocksWhatCouldStartAnother) {
    params.showRasterTab = true;
    const auto dialog = Open();
    auto* bar = dialog->findChild<QProgressBar*>(QStringLiteral("progress"));
    auto* act = dialog->findChild<QWidget*>(QStringLiteral("page363"))
                    ->findChild<QPushButton*>(QStringLiteral("act"));
    EXPECT_FALSE(bar->isVisible());
    {
        const DialogProgress::Run run(*journal.progress);
        EXPECT_TRUE(bar->isVisible());
        Press(*dialog, "ok");
        QTest::mouseClick(act, Qt::LeftButton);
        QTest::keyClick(act, Qt::Key_Space);
        QTest::mouseClick(dialog->Tabs().tabBar(), Qt::LeftButton, {},
                          dialog->Tabs().tabBar()->tabRect(1).center());
        dialog->accept();
        EXPECT_THAT(journal.lines, IsEmpty());
        EXPECT_EQ(dialog->Tabs().ShownIndex(), 0);
        QTest::keyClick(act, Qt::Key_Escape);
        EXPECT_TRUE(journal.progress->IsCancelled());
    }
    QTest::mouseClick(act, Qt::LeftButton);
    EXPECT_THAT(journal.lines, ElementsAre("act las"));
}

TEST_F(Shell, TheFocusComesBackAfterARun) {
    const auto dialog = Open();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    auto* act = dialog->findChild<QPushButton*>(QStringLiteral("act"));
    act->setFocus();
    {
        const DialogProgress::Run run(*journal.progress);
        act->setEnabled(false);
        EXPECT_FALSE(act->hasFocus());
    }
    act->setEnabled(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return act->hasFocus(); }));
}

TEST_F(Shell, EveryWayOfClosingStopsARunAndASecondPressLosesNothing) {
    const auto ways = {+[](QDialog& d) { Press(d, "cancel"); }, +[](QDialog& d) { d.close(); },
                       +[](QDialog& d) { QTest::keyClick(&d, Qt::Key_Escape); }};
    for (auto way : ways) {
        const auto dialog = Open();
        {
            const DialogProgress::Run run(*journal.progress);
            way(*dialog);
            EXPECT_TRUE(journal.progress->IsCancelled());
        }
        way(*dialog);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_THAT(journal.lines, IsEmpty());
        EXPECT_TRUE(QTest::qWaitFor([&] { return !journal.progress->WasStoppedJustNow(); }));
        way(*dialog);
        EXPECT_FALSE(dialog->isVisible());
        journal.lines.clear();
    }
}

TEST_F(Shell, OnlyOkChangesTheRecord) {
    params.showRasterTab = true;
    params.lasFiles[L"/host"] = {L"own.las"};
    const FilesByFolder own = params.lasFiles;
    journal.store = [](const std::string&, AddFilesParams& record) {
        record.lasFiles[L"/d"].push_back(L"a.las");
        record.lasThinning = 5;
    };
    const auto isOwn = [&] { return params.lasFiles == own && params.lasThinning == 0; };
    using Page = std::string Journal::*;
    for (const Page failing : {&Journal::refuse, &Journal::throwOnStore}) {
        for (const bool cancels : {true, false}) {
            journal.*failing = "raster";
            auto dialog = Open();
            Press(*dialog, "ok");
            EXPECT_TRUE(dialog->isVisible());
            if (cancels) {
                Press(*dialog, "cancel");
                EXPECT_TRUE(isOwn());
            }
            dialog.reset();
            EXPECT_TRUE(isOwn()) << "also when its window goes without an answer";
            journal.*failing = "";
        }
    }
    EXPECT_EQ(journal.handedOver, "");
    journal.refuse = "raster";
    const auto dialog = Open();
    Press(*dialog, "ok");
    journal.refuse = "";
    Press(*dialog, "ok");
    EXPECT_THAT(params.lasFiles[L"/d"], ElementsAre(L"a.las", L"a.las")) << "one of each page";
    EXPECT_EQ(journal.handedOver, "las raster ");
}

TEST_F(Shell, RunIsTrueForOkWithAListThatAHostActsOn) {
    using P = AddFilesParams;
    const struct {
        const char* name;
        void (*fill)(P&);
        const char* press;
        bool result;
    } cases[] = {
        {"nothing", [](P&) {}, "ok", false},
        {"las", [](P& p) { p.lasFiles[L"/d"]; }, "ok", true},
        {"las", [](P& p) { p.lasFiles[L"/d"]; }, "cancel", false},
        {"raster", [](P& p) { p.rasterFiles[L"/d"]; }, "ok", true},
        {"feature", [](P& p) { p.featureFiles[L"l"]; }, "ok", true},
        {"dem", [](P& p) { p.demFiles[L"/d"]; }, "ok", true},
        {"photo", [](P& p) { p.photoFiles.emplace_back(); }, "ok", true},
        {"presigned", [](P& p) { p.presignedUrlLayers[L"l"]; }, "ok", true},
        {"cloud", [](P& p) { p.cloudLasLayers[L"l"]; }, "ok", true},
        {"cloud 2", [](P& p) { p.cloudLasLayerValues2[L"l"]; }, "ok", false},
        {"cloud 3", [](P& p) { p.cloudLasLayerValues3[L"l"]; }, "ok", false},
        {"inputs", [](P& p) { p.existingLasLayers[L"l"]; }, "ok", false},
    };
    for (const auto& c : cases) {
        params = {};
        journal.store = [&c](auto&, P& record) { c.fill(record); };
        const auto dialog = Make();
        QTimer::singleShot(0, dialog.get(), [&] { Press(*dialog, c.press); });
        EXPECT_EQ(dialog->Run(), c.result) << c.name << ", " << c.press;
    }
}

TEST_F(Shell, InitialPathsGoToThePagesThatTakeThem) {
    params.showRasterTab = params.showDemTab = true;
    const struct {
        int tab;
        std::vector<std::wstring> paths;
        std::vector<std::string> lines;
        std::vector<std::wstring> added;
        int shown;
    } cases[] = {
        {0, {}, {}, {}, 0},
        {2, {L"/d/x.txt"}, {}, {}, 2},
        {0,
         {L"/d/a.tif", L"/d/b.las", L"/d/c.tif", L"/d/x.txt"},
         {"add raster", "add las"},
         {L"/d/a.tif", L"/d/c.tif", L"/d/b.las"},
         1},
        {2, {L"/d/folder", L"/d/b.las"}, {"add dem", "add las"}, {L"/d/folder", L"/d/b.las"}, 2},
    };
    for (const auto& c : cases) {
        journal.lines.clear();
        journal.added.clear();
        params.initialTab = c.tab;
        params.initialPaths = c.paths;
        const auto dialog = Open();
        QApplication::processEvents();
        dialog->hide();
        dialog->show();
        QApplication::processEvents();
        EXPECT_EQ(journal.lines, c.lines) << "once";
        EXPECT_EQ(journal.added, c.added);
        EXPECT_EQ(dialog->Tabs().ShownIndex(), c.shown);
    }
}

TEST_F(Shell, EscapeEndsTheAddingOfAllInitialPaths) {
    params.showRasterTab = true;
    params.initialPaths = {L"/d/a.tif", L"/d/b.las"};
    journal.stopIn = "raster";
    const auto dialog = Open();
    QApplication::processEvents();
    EXPECT_THAT(journal.lines, ElementsAre("add raster"));
}

TEST_F(Shell, DropsGoToTheShownPageOrTheFirstThatKnowsTheFiles) {
    params.showRasterTab = true;
    const auto dialog = Open();
    const auto drop = [&](const QStringList& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : files) {
            urls.append(QUrl::fromLocalFile(file));
        }
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(dialog.get(), &enter);
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(dialog.get(), &event);
    };
    drop({QStringLiteral("/data/a b.las"), QStringLiteral("/data/x.txt")});
    EXPECT_THAT(journal.added, ElementsAre(NativePath(L"/data/a b.las"), NativePath(L"/data/x.txt")));
    EXPECT_EQ(dialog->Tabs().ShownIndex(), 0);
    drop({QStringLiteral("/data/image.tif")});
    EXPECT_EQ(dialog->Tabs().ShownIndex(), 1);
    drop({QStringLiteral("/data/x.txt")});
    EXPECT_THAT(journal.lines, ElementsAre("add las", "add raster"));
}

TEST_F(Shell, OverwriteWarningComesExactlyWhenOriginalsWouldBeLost) {
    struct Case {
        bool companion, convert;
        int pyramid, backup;
        bool pending;
        bool asked;
    };
    const Case cases[] = {
        {true, true, 1, 0, true, true},    {true, false, 1, 0, true, true}, {false, true, 1, 0, true, true},
        {false, false, 1, 0, true, false}, {true, true, 2, 0, true, false}, {true, true, 0, 0, true, false},
        {true, true, 1, 1, true, false},   {true, true, 1, 2, true, false}, {true, true, 1, 0, false, false},
    };
    for (const Case& c : cases) {
        prompts.tasksShown.clear();
        journal.needCompanion = c.companion ? "las" : "";
        params.convertExistingQvr = c.convert;
        params.lasPyramidType = c.pyramid;
        params.orvexLasBackupOption = c.backup;
        params.orvexLasOverwritePending = c.pending;
        const auto dialog = Open();
        Press(*dialog, "ok");
        EXPECT_EQ(prompts.tasksShown.size(), c.asked ? 1U : 0U)
            << c.companion << c.convert << c.pyramid << c.backup;
        EXPECT_FALSE(dialog->isVisible());
    }
}

TEST_F(Shell, OverwriteWarningIsSuppressedByItsCheckBoxWhateverTheAnswer) {
    params.convertExistingQvr = params.orvexLasOverwritePending = true;
    params.lasPyramidType = 1;
    const auto press = [&](TaskAnswer answer) {
        prompts.taskAnswers = {answer};
        const auto dialog = Open();
        Press(*dialog, "ok");
        return !dialog->isVisible();
    };
    EXPECT_FALSE(press({PromptAnswer::No, false}));
    EXPECT_FALSE(press({PromptAnswer::Cancel, false}));
    EXPECT_TRUE(press({PromptAnswer::Yes, false}));
    EXPECT_FALSE(press({PromptAnswer::No, true}));
    ASSERT_THAT(prompts.tasksShown, SizeIs(4));
    EXPECT_EQ(prompts.tasksShown[0].content, Text(text::kOverwriteWarningCause) + L"\n" +
                                                 Text(text::kOverwriteWarningAdvice) + L"\n\n" +
                                                 Text(text::kOverwriteWarningQuestion));
    EXPECT_TRUE(press({PromptAnswer::No, false})) << "ticked with No: never asked again";
    EXPECT_THAT(prompts.tasksShown, SizeIs(4));
}

}  // namespace
}  // namespace orvex
