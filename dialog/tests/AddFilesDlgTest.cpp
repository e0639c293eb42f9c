#include "dialog/AddFilesDlg.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QProgressBar>
#include <QTabBar>
#include <QTimer>

#include "dialog/tests/ShellFixture.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

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
    for (const auto& [initial, shown] : {std::pair{0, 0}, {1, 1}, {2, -1}, {-1, -1}}) {
        params.initialTab = initial;
        const auto dialog = Open();
        EXPECT_EQ(dialog->Tabs().ShownIndex(), shown) << initial;
        dialog->done(QDialog::Rejected);
        EXPECT_EQ(StoredTab(), std::max(shown, 0)) << "none would be none for ever";
        dialog->show();
        const auto* las = dialog->findChild<QWidget*>(QStringLiteral("page363"));
        const auto* cloud = dialog->findChild<QWidget*>(QStringLiteral("page410"));
        EXPECT_EQ(las->isVisible(), shown == 0) << initial;
        EXPECT_EQ(cloud->isVisible() && cloud->isEnabled(), shown == 1) << initial;
        QTabBar* bar = dialog->Tabs().tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
        EXPECT_TRUE(las->isVisible()) << "a click leads out of it";
        EXPECT_FALSE(cloud->isEnabled()) << "a page that is hidden takes no keys";
        dialog->reject();
        EXPECT_EQ(StoredTab(), 0);
    }
}

TEST_F(Shell, AFailureOfTheShellIsToldAndLosesNothing) {
    params.showRasterTab = true;
    const auto dialog = Open();
    journal.throwWhenEnabled = "raster";
    EXPECT_NO_THROW(dialog->Tabs().setCurrentIndex(1));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, L"An exception occurred in OnSelectionChanged():\n\nno memory");
    EXPECT_TRUE(dialog->isVisible());
    registry.throws = true;
    EXPECT_NO_THROW(dialog->done(QDialog::Accepted));
    EXPECT_TRUE(prompts.shown.back().text.starts_with(L"An exception occurred in OnDestroy()"));
    EXPECT_EQ(dialog->result(), QDialog::Accepted) << "what was collected is the host's all the same";
}

TEST_F(Shell, ADialogThatIsHiddenReadsNoFurther) {
    const auto dialog = Open();
    const DialogProgress::Run run(*journal.progress);
    dialog->hide();  // as when its owner is destroyed
    EXPECT_TRUE(journal.progress->IsCancelled());
}

TEST_F(Shell, OkAsksThePagesOfTheSwitchesInOrderUntilOneRefuses) {
    using P = AddFilesParams;
    const struct {
        std::vector<bool P::*> on;
        const char* refuse;
        std::vector<std::string> asked;
    } cases[] = {
        {{}, "", {"store las"}},
        {{&P::showPhotoTab, &P::showRasterTab}, "", {"store las", "store raster", "store photo"}},
        {{&P::showCloudTab, &P::showDemTab, &P::showFeatureTab},
         "dem",
         {"store las", "store feature", "store dem"}},
        {{&P::showCloudTab}, "cloud", {"store las", "store cloud"}},
    };
    for (const auto& c : cases) {
        params = {};
        for (const auto pageSwitch : c.on) {
            params.*pageSwitch = true;
        }
        journal.lines.clear();
        journal.refuse = c.refuse;
        const auto dialog = Open();
        EXPECT_EQ(static_cast<std::size_t>(dialog->Tabs().count()), c.on.size() + 1);
        Press(*dialog, "ok");
        EXPECT_EQ(journal.lines, c.asked);
        EXPECT_EQ(dialog->isVisible(), *c.refuse != 0);
        EXPECT_EQ(dialog->result() == QDialog::Accepted, *c.refuse == 0);
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
    EXPECT_THROW(Make()->Run(), LDataError);
    hostObjects.createApplicationResult = kHostClassNotRegistered;
    const auto dialog = Make();
    EXPECT_EQ(dialog->Initialise(), kHostClassNotRegistered);
    EXPECT_THROW(dialog->Run(), LDataError);
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_THAT(ToUtf8(prompts.shown[0].text), HasSubstr("GetProjectFolder"));
    for (const char* told : {"80040154", "{A59ECFF0-11E3-4339-B008-8FBD1D3B6420}", "RegisterHostClass"}) {
        EXPECT_THAT(ToUtf8(prompts.shown[1].text), HasSubstr(told));
    }
    EXPECT_THAT(journal.lines, ElementsAre("release las", "release las"));
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

TEST_F(Shell, EveryWayOfClosingStopsARunThenReleasesThePagesAndASecondPressLosesNothing) {
    params.showPhotoTab = true;
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
        EXPECT_THAT(journal.lines, ElementsAre("release las", "release photo"));
        journal.lines.clear();
    }
}

TEST_F(Shell, EscapeAndTheCloseButtonAskBeforeAListIsDiscarded) {
    const auto escape = +[](QDialog& d) { QTest::keyClick(&d, Qt::Key_Escape); };
    const auto close = +[](QDialog& d) { d.close(); };
    const auto cancel = +[](QDialog& d) { Press(d, "cancel"); };
    const struct {
        const char* what;
        void (*way)(QDialog&);
        bool hasRows;
        std::size_t questions;
        PromptAnswer answer;
        bool closes;
    } cases[] = {
        {"no rows", escape, false, 0, PromptAnswer::No, true},
        {"no rows", close, false, 0, PromptAnswer::No, true},
        {"cancel", cancel, true, 0, PromptAnswer::No, true},
        {"keep", escape, true, 1, PromptAnswer::No, false},
        {"keep", close, true, 1, PromptAnswer::No, false},
        {"discard", escape, true, 1, PromptAnswer::Yes, true},
        {"discard", close, true, 1, PromptAnswer::Yes, true},
    };
    for (const auto& c : cases) {
        journal.lines.clear();
        prompts.shown.clear();
        journal.hasRows = c.hasRows;
        prompts.answers = {c.answer};
        const auto dialog = Open();
        c.way(*dialog);
        EXPECT_EQ(!dialog->isVisible(), c.closes) << c.what;
        EXPECT_EQ(journal.lines.empty(), !c.closes) << c.what << ": pages keep what they hold";
        ASSERT_THAT(prompts.shown, SizeIs(c.questions)) << c.what;
        for (const Prompt& prompt : prompts.shown) {
            EXPECT_EQ(prompt.icon, PromptIcon::Warning) << "No is the default then, and Escape";
            EXPECT_EQ(prompt.noText, Text(text::kKeep));
        }
        prompts.answers.clear();
    }
}

TEST_F(Shell, WhatIsOddIsToldBeforePagesChangeAnything) {
    params.showRasterTab = params.showDemTab = true;
    const AddingReview fine{.added = 3, .left = 0, .odd = {}};
    const AddingReview odd{.added = 1200,
                           .left = 2,
                           .odd = {{L"Unreadable: 1", {L"/d/b.tif: empty"}, {4}},
                                   {L"No CRS: 2", {L"/d/a.tif", L"/d/b.tif"}, {1, 4}}}};
    journal.reviews = {{"las", fine}};
    Press(*Open(), "ok");
    EXPECT_THAT(prompts.reportsShown, IsEmpty());

    journal.reviews = {{"las", fine}, {"raster", odd}};
    prompts.reportAnswers = {PromptAnswer::No};
    journal.lines.clear();
    const auto dialog = Open();
    Press(*dialog, "ok");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_THAT(journal.lines, ElementsAre("select raster"));
    EXPECT_THAT(journal.selected, ElementsAre(1U, 4U));
    EXPECT_EQ(dialog->Tabs().ShownIndex(), 1);
    ASSERT_THAT(prompts.reportsShown, SizeIs(1));
    const ReportPrompt& report = prompts.reportsShown[0];
    EXPECT_EQ(report.summary,
              FormatText(Text(text::kReviewSummary), {1203}) + FormatText(Text(text::kReviewLeft), {2}));
    EXPECT_EQ(report.yesText, FormatText(Text(text::kReviewAddSeveral), {1203}));
    ASSERT_THAT(report.sections, SizeIs(2));
    EXPECT_EQ(report.sections[0].heading, Text(text::kRasterTab) + L": Unreadable: 1");
    EXPECT_THAT(report.sections[1].lines, SizeIs(2));

    Press(*dialog, "ok");
    EXPECT_EQ(dialog->result(), QDialog::Accepted) << "after Add";
    EXPECT_THAT(journal.lines, ElementsAre("select raster", "store las", "store raster", "store dem"));
}

TEST_F(Shell, AnEscapeThatComesAsTheRunEndsIsNone) {
    journal.hasRows = true;
    const auto dialog = Open();
    { const DialogProgress::Run run(*journal.progress); }
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_THAT(prompts.shown, IsEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !journal.progress->EndedJustNow(); }));
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_THAT(prompts.shown, SizeIs(1));
}

TEST_F(Shell, CtrlReturnIsOkFromEverywhere) {
    for (const char* focused : {"act", "cancel"}) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            const auto dialog = Open();
            dialog->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
            auto* widget = dialog->findChild<QWidget*>(QLatin1String(focused));
            widget->setFocus();
            QTest::keyClick(widget, key, Qt::ControlModifier);
            EXPECT_EQ(dialog->result(), QDialog::Accepted) << focused;
        }
    }
}

TEST_F(Shell, TheTabsComeFirstInTheTabOrderAndLettersAreUniqueInSight) {
    params.showRasterTab = params.showDemTab = true;
    const auto dialog = Open();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    QTabBar* bar = dialog->Tabs().tabBar();
    dialog->findChild<QWidget*>(QStringLiteral("cancel"))->setFocus();
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog->focusWidget(), bar);
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog->focusWidget()->objectName(), QStringLiteral("act"));
    std::set<QString> letters;
    for (const char* name : {"ok", "cancel", "act"}) {
        letters.insert(dialog->findChild<QPushButton*>(QLatin1String(name))->shortcut().toString());
    }
    for (int tab = 0; tab < bar->count(); ++tab) {
        letters.insert(QKeySequence::mnemonic(bar->tabText(tab)).toString());
    }
    EXPECT_THAT(letters, SizeIs(6));
    EXPECT_FALSE(letters.contains(QString()));
}

TEST_F(Shell, OnlyOkChangesTheRecord) {
    params.showRasterTab = true;
    params.lasFiles[L"/host"] = {L"own.las"};
    const FilesByFolder own = params.lasFiles;
    journal.store = [](const std::string& name, AddFilesParams& record) {
        record.lasFiles[L"/d"].push_back(FromUtf8(name));
        record.lasThinning = 5;
    };
    const auto isOwn = [&] { return params.lasFiles == own && params.lasThinning == 0; };
    using Page = std::string Journal::*;
    for (const Page failing : {&Journal::refuse, &Journal::throwOnStore}) {
        for (const bool cancels : {true, false}) {
            journal.*failing = "raster";
            auto dialog = Open();
            prompts.shown.clear();
            Press(*dialog, "ok");
            EXPECT_TRUE(dialog->isVisible());
            EXPECT_THAT(prompts.shown, SizeIs(failing == &Journal::throwOnStore ? 1 : 0)) << "with the cause";
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
    EXPECT_THAT(params.lasFiles[L"/d"], ElementsAre(L"las", L"raster")) << "one of each page";
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
        {"las", [](P& p) { p.lasFiles[L"/d"]; }, "ok", true},
        {"las", [](P& p) { p.lasFiles[L"/d"]; }, "cancel", false},
        {"raster", [](P& p) { p.rasterFiles[L"/d"]; }, "ok", true},
        {"feature", [](P& p) { p.featureFiles[L"l"]; }, "ok", true},
        {"dem", [](P& p) { p.demFiles[L"/d"]; }, "ok", true},
        {"photo", [](P& p) { p.photoFiles.emplace_back(); }, "ok", true},
        {"presigned", [](P& p) { p.presignedUrlLayers[L"l"]; }, "ok", true},
        {"cloud", [](P& p) { p.cloudLasLayers[L"l"]; }, "ok", true},
        {"inputs", [](P& p) { p.existingLasLayers[L"l"]; }, "ok", false},
    };
    for (const auto& c : cases) {
        params = {};
        journal.store = [&c](auto&, P& record) { c.fill(record); };
        const auto dialog = Make();
        QTimer::singleShot(0, dialog.get(), [&] { Press(*dialog, c.press); });
        EXPECT_EQ(dialog->Run(), c.result) << c.name << ", " << c.press;
    }
    for (const auto& c : cases) {
        params = {};
        c.fill(params);
        const auto dialog = Make();
        journal.store = [](auto&, auto&) {};
        QTimer::singleShot(0, dialog.get(), [&] { Press(*dialog, "ok"); });
        EXPECT_FALSE(dialog->Run()) << c.name << " of an earlier call";
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
    testing::DropOn(*dialog, {L"/data/a b.las", L"/data/x.txt"},
                    [this] { EXPECT_THAT(journal.added, IsEmpty()); });
    EXPECT_THAT(journal.added, ElementsAre(NativePath(L"/data/a b.las"), NativePath(L"/data/x.txt")));
    EXPECT_EQ(dialog->Tabs().ShownIndex(), 0);
    testing::DropOn(*dialog, {L"/data/image.tif"});
    EXPECT_EQ(dialog->Tabs().ShownIndex(), 1);
    testing::DropOn(*dialog, {L"/data/x.txt"});
    EXPECT_THAT(journal.lines, ElementsAre("add las", "add raster"));
}

TEST_F(Shell, OverwriteWarningComesExactlyWhenOriginalsWouldBeLost) {
    const struct {
        bool companion, convert;
        int pyramid, backup;
        bool pending;
        bool asked;
    } cases[] = {
        {true, false, 1, 0, true, true}, {false, true, 1, 0, true, true},  {false, false, 1, 0, true, false},
        {true, true, 2, 0, true, false}, {true, true, 0, 0, true, false},  {true, true, 1, 1, true, false},
        {true, true, 1, 2, true, false}, {true, true, 1, 0, false, false},
    };
    for (const auto& c : cases) {
        prompts.tasksShown.clear();
        journal.needCompanion = c.companion ? "las" : "";
        params.convertExistingQvr = c.convert;
        params.lasPyramidType = c.pyramid;
        params.orvexLasBackupOption = c.backup;
        params.orvexLasOverwritePending = c.pending;
        Press(*Open(), "ok");
        EXPECT_EQ(prompts.tasksShown.size(), c.asked ? 1U : 0U)
            << c.companion << c.convert << c.pyramid << c.backup;
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
    EXPECT_TRUE(press({PromptAnswer::No, false})) << "ticked with No: never asked again";
    EXPECT_THAT(prompts.tasksShown, SizeIs(4));
}

}  // namespace
}  // namespace orvex
