#include "host/app/WorkDialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <thread>

#include "support/LDataError.h"

namespace orvex {
namespace {

WorkDialog* OpenDialog() {
    return qobject_cast<WorkDialog*>(QApplication::activeModalWidget());
}

TEST(WorkDialog, EndsWithItsWorkAndPassesErrorsOn) {
    std::thread::id thread;
    EXPECT_EQ(WorkDialog::Run(nullptr, "title",
                              [&thread](Kst::ProgressIf& progress) {
                                  progress.SetRange(0);
                                  progress.SetPosition(7);
                                  thread = std::this_thread::get_id();
                              }),
              WorkEnd::Finished);
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_THROW(WorkDialog::Run(nullptr, "title", [](Kst::ProgressIf&) { throw LDataError(L"no"); }),
                 LDataError);
}

TEST(WorkDialog, EscapeAsksTheWorkToStopAndWaitsForIt) {
    std::atomic<bool> cleanedUp = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&timer] {
        if (WorkDialog* dialog = OpenDialog(); dialog != nullptr && dialog->isVisible()) {
            timer.stop();
            QTest::keyClick(dialog, Qt::Key_Escape);
            EXPECT_TRUE(dialog->isVisible()) << "closed before the work had ended";
            QTest::keyClick(dialog, Qt::Key_Escape);
        }
    });
    timer.start(5);
    const WorkEnd end = WorkDialog::Run(nullptr, "title", [&cleanedUp](Kst::ProgressIf& progress) {
        while (!progress.IsCancelled()) {
            std::this_thread::yield();
        }
        cleanedUp = true;
    });
    EXPECT_EQ(end, WorkEnd::Finished);
    EXPECT_TRUE(cleanedUp);
}

}  // namespace
}  // namespace orvex
