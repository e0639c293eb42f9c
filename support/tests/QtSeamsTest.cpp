// The widget halves of prompts, pickers and help, clicked as a person would.
#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "support/FilePickersQt.h"
#include "support/HelpViewerQt.h"
#include "support/QtText.h"
#include "support/Text.h"
#include "support/UserPromptsQt.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Does something to the modal window that the next call opens.
template <typename Act>
void WhenShown(Act act) {
    QTimer::singleShot(0, qApp, [act] { act(QApplication::activeModalWidget()); });
}

void Click(QWidget* window, const char* button) {
    auto* found = window->findChild<QPushButton*>(QLatin1String(button));
    ASSERT_NE(found, nullptr) << button;
    QTest::mouseClick(found, Qt::LeftButton);
}

TEST(UserPromptsQt, AnswersWithTheButtonPressedOrWhatClosingStandsFor) {
    struct Case {
        PromptButtons buttons;
        const char* press;  // null: Escape
        PromptAnswer answer;
    };
    const Case cases[] = {
        {PromptButtons::Ok, "ok", PromptAnswer::Ok},
        {PromptButtons::Ok, nullptr, PromptAnswer::Ok},
        {PromptButtons::YesNo, "yes", PromptAnswer::Yes},
        {PromptButtons::YesNo, "no", PromptAnswer::No},
        {PromptButtons::YesNo, nullptr, PromptAnswer::No},
        {PromptButtons::YesNoCancel, "no", PromptAnswer::No},
        {PromptButtons::YesNoCancel, "cancel", PromptAnswer::Cancel},
        {PromptButtons::YesNoCancel, nullptr, PromptAnswer::Cancel},
    };
    UserPromptsQt prompts;
    for (const Case& c : cases) {
        WhenShown([&](QWidget* window) {
            if (c.press == nullptr) {
                QTest::keyClick(window, Qt::Key_Escape);
            } else {
                Click(window, c.press);
            }
        });
        EXPECT_EQ(prompts.Show({L"Go on?", L"Caption", PromptIcon::Question, c.buttons}), c.answer)
            << (c.press ? c.press : "Escape");
    }
}

TEST(UserPromptsQt, EnterAgreesToAQuestionButNotToWhatIsWarnedOf) {
    UserPromptsQt prompts;
    for (const auto& [icon, answer] : {std::pair(PromptIcon::Question, PromptAnswer::Yes),
                                       std::pair(PromptIcon::Warning, PromptAnswer::No)}) {
        WhenShown([](QWidget* window) { QTest::keyClick(window, Qt::Key_Return); });
        EXPECT_EQ(prompts.Show({L"Overwrite?", L"Caption", icon, PromptButtons::YesNo}), answer);
    }
}

TEST(UserPromptsQt, ShowsTextsLiterally) {
    UserPromptsQt prompts;
    WhenShown([](QWidget* window) {
        auto* box = qobject_cast<QMessageBox*>(window);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), QStringLiteral("<b>no markup</b>"));
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        Click(window, "ok");
    });
    prompts.Show({L"<b>no markup</b>", L"Caption", PromptIcon::Warning, PromptButtons::Ok});
}

TEST(UserPromptsQt, ATaskTellsItsCheckBoxWhateverTheAnswer) {
    UserPromptsQt prompts;
    const TaskPrompt task{
        L"Title", L"Main", L"Content", L"Never again", PromptIcon::Warning, PromptButtons::YesNo};
    for (const bool tick : {false, true}) {
        WhenShown([tick](QWidget* window) {
            auto* check = window->findChild<QCheckBox*>(QStringLiteral("verification"));
            ASSERT_NE(check, nullptr);
            EXPECT_FALSE(check->isChecked());
            if (tick) {
                QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(8, check->height() / 2));
            }
            Click(window, "no");
        });
        const TaskAnswer answer = prompts.ShowTask(task);
        EXPECT_EQ(answer.answer, PromptAnswer::No);
        EXPECT_EQ(answer.verificationChecked, tick);
    }
}

TEST(FilePickersQt, CountsFolderAndNamesWithOneSeparatorEach) {
    EXPECT_EQ(SelectionCharacters({}), 0U);
    EXPECT_EQ(SelectionCharacters({L"/data/a.las", L"/data/bc.las"}), 6U + 6U + 7U);
}

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
        WhenShown([typed](QWidget* window) {
            auto* dialog = qobject_cast<QFileDialog*>(window);
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
        return FilePickersQt().PickFiles(request);
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
    request.bufferCharacters = needed - 1;
    const PickedFiles tooMany = Pick("\"a.las\" \"b.LAS\"");
    EXPECT_EQ(tooMany.outcome, PickOutcome::BufferTooSmall);
    EXPECT_THAT(tooMany.paths, IsEmpty());
    request.bufferCharacters = needed;
    EXPECT_EQ(Pick("\"a.las\" \"b.LAS\"").outcome, PickOutcome::Picked);
}

TEST(HelpViewerQt, OpensTheTopicOfTheManualBesideTheLibrary) {
    const testing::TemporaryFolder folder;
    std::vector<QUrl> opened;
    HelpViewerQt viewer(folder.Path(), [&](const QUrl& address) {
        opened.push_back(address);
        return true;
    });
    EXPECT_FALSE(viewer.Show(HelpTopic::LasFiles)) << "no manual";
    EXPECT_THAT(opened, IsEmpty());
    const std::wstring manual = folder.Write(L"help/index.html", "<html>");
    EXPECT_TRUE(viewer.Show(HelpTopic::LasFiles));
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_EQ(ToWidePath(opened[0].toLocalFile()), manual);
    EXPECT_EQ(opened[0].fragment(), QStringLiteral("topic-730"));
}

}  // namespace
}  // namespace orvex
