// Dialogs over a window that is not Qt's, with the program's own parts around them.
#include <gtest/gtest.h>
#include <windows.h>

#include <QCoreApplication>
#include <QDialog>
#include <QTimer>
#include <QWindow>
#include <stdexcept>

#include "entry/CallScope.h"

namespace orvex {
namespace {

class Owned : public ::testing::Test {
  protected:
    Owned()
        : window(CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 400, 300,
                                 nullptr, nullptr, nullptr, nullptr)) {}
    ~Owned() override { DestroyWindow(window); }
    HWND window;
};

TEST_F(Owned, AnExceptionGivesTheOwnerBack) {
    EXPECT_THROW(
        {
            const CallScope scope;
            QDialog dialog;
            dialog.setModal(true);
            dialog.show();
            EXPECT_FALSE(IsWindowEnabled(window));
            throw std::runtime_error("from a dialog");
        },
        std::runtime_error);
    EXPECT_TRUE(IsWindowEnabled(window));
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST_F(Owned, TheOwnerCanBeUsedBeforeTheDialogIsHidden) {
    const CallScope scope(reinterpret_cast<NativeWindow>(window));
    QDialog dialog;
    bool enabled = false;
    QTimer::singleShot(0, &dialog, [&] {
        EXPECT_FALSE(IsWindowEnabled(window));
        QObject::connect(dialog.windowHandle(), &QWindow::visibleChanged, &dialog,
                         [&] { enabled = IsWindowEnabled(window) != FALSE; });
        dialog.accept();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_TRUE(enabled);
}

TEST_F(Owned, ADialogInADialogLeavesTheOwnerDisabled) {
    const CallScope scope;
    QDialog dialog;
    QTimer::singleShot(0, &dialog, [&] {
        QDialog inner(&dialog);
        QTimer::singleShot(0, &inner, &QDialog::accept);
        EXPECT_EQ(inner.exec(), QDialog::Accepted);
        EXPECT_FALSE(IsWindowEnabled(window));
        dialog.accept();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_TRUE(IsWindowEnabled(window));
}

TEST_F(Owned, TheDialogIsInTheMiddleOfTheOwner) {
    const CallScope scope;
    QDialog dialog;
    dialog.resize(100, 80);
    dialog.setModal(true);
    dialog.show();
    EXPECT_LT((dialog.frameGeometry().center() - FromSystemPixels({300, 250})).manhattanLength(), 5);
}

TEST_F(Owned, AChildStandsForItsWindow) {
    HWND child = CreateWindowExW(0, L"BUTTON", L"", WS_CHILD, 0, 0, 9, 9, window, nullptr, nullptr, nullptr);
    EXPECT_EQ(FindNativeOwner(reinterpret_cast<NativeWindow>(child)), reinterpret_cast<NativeWindow>(window));
}

}  // namespace
}  // namespace orvex
