#include "dialog/DialogProgress.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTest>

#include "support/HandlerGuard.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"

namespace orvex {
namespace {

// Asks until it is told to stop; the answer that a run gets to an Escape.
bool StopsWithin(DialogProgress& progress, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        if (progress.IsCancelled()) {
            return true;
        }
    }
    return false;
}

struct Window {
    QDialog dialog;
    QProgressBar* bar = new QProgressBar(&dialog);
    DialogProgress progress{bar};
    Window() { dialog.show(); }
};

TEST(DialogProgress, IsShownWhileTheOuterRunLasts) {
    Window window;
    QSignalSpy changes(&window.progress, &DialogProgress::RunningChanged);
    EXPECT_FALSE(window.bar->isVisible());
    {
        const DialogProgress::Run outer(window.progress);
        EXPECT_TRUE(window.bar->isVisible());
        { const DialogProgress::Run inner(window.progress); }
        EXPECT_TRUE(window.progress.IsRunning());
        window.progress.SetText(L"Reading");
    }
    EXPECT_EQ(window.bar->format(), QString()) << "nothing is left for the next run";
    EXPECT_FALSE(window.bar->isVisible());
    EXPECT_EQ(changes.count(), 2);
}

TEST(DialogProgress, ShowsRangesBeyondAnIntAndTextsLiterally) {
    Window window;
    const DialogProgress::Run run(window.progress);
    EXPECT_EQ(window.bar->maximum(), 0) << "busy while the number is not known";
    window.progress.SetRange(std::uint64_t{1} << 62);
    window.progress.SetPosition(std::uint64_t{1} << 61);
    EXPECT_EQ(window.bar->value(), window.bar->maximum() / 2);
    window.progress.SetPosition(~std::uint64_t{0});
    EXPECT_EQ(window.bar->value(), window.bar->maximum());
    window.progress.SetText(L"100%percent.las");
    EXPECT_EQ(window.bar->text().remove(QChar(0x200B)), QStringLiteral("100%percent.las"));
}

TEST(DialogProgress, EscapeStopsTheRunAndLeavesTheDialogOpen) {
    Window window;
    {
        const DialogProgress::Run run(window.progress);
        EXPECT_FALSE(StopsWithin(window.progress, 12));
        QTest::keyClick(&window.dialog, Qt::Key_Escape);
        EXPECT_TRUE(StopsWithin(window.progress, 1000));
    }
    EXPECT_TRUE(window.dialog.isVisible());
    EXPECT_TRUE(window.progress.WasStoppedJustNow());
    const DialogProgress::Run next(window.progress);
    EXPECT_FALSE(window.progress.IsCancelled()) << "each run starts afresh";
}

TEST(DialogProgress, EscapeInAnotherWindowIsThatWindows) {
    Window window;
    QDialog question(&window.dialog);
    question.show();
    const DialogProgress::Run run(window.progress);
    QTest::keyClick(&question, Qt::Key_Escape);
    EXPECT_FALSE(question.isVisible());
    EXPECT_FALSE(window.progress.IsCancelled());
}

TEST(HandlerGuard, TellsNameAndCauseOfWhateverIsThrown) {
    testing::ScriptedPrompts prompts;
    EXPECT_TRUE(RunGuarded(prompts, L"OnNothing", [] {}));
    EXPECT_FALSE(RunGuarded(prompts, L"EnableItems", [] { throw 7; }));
    Guarded(prompts, L"OnClear", [] { throw std::runtime_error("second"); })();
    ASSERT_EQ(prompts.shown.size(), 2U);
    EXPECT_EQ(prompts.shown[0].text,
              L"An exception occurred in EnableItems():\n\n" + Text(text::kUnknownError));
    EXPECT_EQ(prompts.shown[1].text, L"An exception occurred in OnClear():\n\nsecond");
}

}  // namespace
}  // namespace orvex
