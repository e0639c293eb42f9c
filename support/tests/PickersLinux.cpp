// Qt's file dialog, used as a person would.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "support/tests/Pickers.h"

namespace orvex {

PickedFiles testing::PickTyping(const OpenFilesRequest& request, const std::string& names) {
    QTimer::singleShot(0, qApp, [names] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->nameFilters(), QStringList{QStringLiteral("LAS Files (*.las *.laz)")});
        if (names.empty()) {
            dialog->reject();
            return;
        }
        auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(edit, nullptr);
        edit->setText(QString::fromStdString(names));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    return MakeFilePickers()->PickFiles(request);
}

}  // namespace orvex
