// Qt's file dialog, used as a person would.
#include <gmock/gmock.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "support/FilePickers.h"
#include "support/OpenFileText.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Picking : public ::testing::Test {
  protected:
    Picking() {
        folder.Write(L"a.las", "x");
        folder.Write(L"b.LAS", "x");
        request.title = L"Add Files";
        request.initialFolder = FromPath(folder.Path());
        request.filters = {{L"LAS Files (*.las)", L"*.las;*.laz"}};
    }
    // Types names into the dialog and confirms them.
    PickedFiles Pick(const char* typed) {
        QTimer::singleShot(0, qApp, [typed] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_THAT(dialog->nameFilters(), ElementsAre(QStringLiteral("LAS Files (*.las *.laz)")));
            if (typed == nullptr) {
                dialog->reject();
                return;
            }
            auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(edit, nullptr);
            edit->setText(QLatin1String(typed));
            QTest::keyClick(edit, Qt::Key_Return);
        });
        return MakeFilePickers()->PickFiles(request);
    }
    testing::TemporaryFolder folder;
    OpenFilesRequest request;
};

TEST_F(Picking, GivesFullPathsInTheOrderChosen) {
    const PickedFiles picked = Pick("\"b.LAS\" \"a.las\"");
    EXPECT_EQ(picked.outcome, PickOutcome::Picked);
    EXPECT_THAT(picked.paths, ElementsAre(folder.Name(L"b.LAS"), folder.Name(L"a.las")));
}

TEST_F(Picking, TellsCancelledAndTooManyApart) {
    EXPECT_EQ(Pick(nullptr).outcome, PickOutcome::Cancelled);
    const std::size_t needed = SelectionCharacters({folder.Name(L"a.las"), folder.Name(L"b.LAS")});
    EXPECT_EQ(needed, FromPath(folder.Path()).size() + 13) << "with the separators";
    request.bufferCharacters = needed - 1;
    const PickedFiles tooMany = Pick("\"a.las\" \"b.LAS\"");
    EXPECT_EQ(tooMany.outcome, PickOutcome::BufferTooSmall);
    EXPECT_THAT(tooMany.paths, IsEmpty());
    request.bufferCharacters = needed;
    EXPECT_EQ(Pick("\"a.las\" \"b.LAS\"").outcome, PickOutcome::Picked);
}

}  // namespace
}  // namespace orvex
