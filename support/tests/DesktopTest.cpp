// Prompts and help, used as a person would, and the texts that dialogs take and give.
#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <variant>

#include "support/DesktopQt.h"
#include "support/OpenFileText.h"
#include "support/QtText.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAreArray;
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

TEST(UserPromptsQt, AnswersWithTheButtonPressedOrWhatAKeyStandsFor) {
    const struct {
        PromptButtons buttons;
        PromptIcon icon;
        std::variant<const char*, Qt::Key> press;
        PromptAnswer answer;
    } cases[] = {
        {PromptButtons::Ok, PromptIcon::Warning, "ok", PromptAnswer::Ok},
        {PromptButtons::Ok, PromptIcon::Warning, Qt::Key_Escape, PromptAnswer::Ok},
        {PromptButtons::YesNo, PromptIcon::Question, "yes", PromptAnswer::Yes},
        {PromptButtons::YesNo, PromptIcon::Question, "no", PromptAnswer::No},
        {PromptButtons::YesNo, PromptIcon::Question, Qt::Key_Escape, PromptAnswer::No},
        {PromptButtons::YesNo, PromptIcon::Question, Qt::Key_Return, PromptAnswer::Yes},
        {PromptButtons::YesNo, PromptIcon::Warning, Qt::Key_Return, PromptAnswer::No},
        {PromptButtons::YesNoCancel, PromptIcon::Question, "no", PromptAnswer::No},
        {PromptButtons::YesNoCancel, PromptIcon::Question, "cancel", PromptAnswer::Cancel},
        {PromptButtons::YesNoCancel, PromptIcon::Question, Qt::Key_Escape, PromptAnswer::Cancel},
    };
    UserPromptsQt prompts;
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        WhenShown([&](QWidget* window) {
            EXPECT_EQ(qobject_cast<QMessageBox*>(window)->textFormat(), Qt::PlainText);
            if (const auto* key = std::get_if<Qt::Key>(&c.press)) {
                QTest::keyClick(window, *key);
            } else {
                Click(window, std::get<const char*>(c.press));
            }
        });
        EXPECT_EQ(prompts.Show({L"Overwrite <b>?", L"Caption", c.icon, c.buttons}), c.answer);
    }
    WhenShown([](QWidget* window) {
        EXPECT_EQ(window->findChild<QPushButton*>("yes")->text(), "Discard");
        Click(window, "no");
    });
    EXPECT_EQ(prompts.Show({L"?", L"", PromptIcon::Warning, PromptButtons::YesNo, L"Discard", L"Keep"}),
              PromptAnswer::No);
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

TEST(UserPromptsQt, AReportIsReadCopiedAndAnswered) {
    const std::wstring why(300, L'y');
    const ReportPrompt report{
        .caption = L"Before",
        .summary = L"Two of three.",
        .sections = {{L"Unreadable: 1", {L"/d/<b>.las: empty"}}, {L"No CRS" + why + L": 1", {L"/d/a.las"}}},
        .yesText = L"Add 2 Files",
        .noText = L"Go Back"};
    const std::pair<std::function<void(QWidget*)>, PromptAnswer> cases[] = {
        {[](QWidget* window) { Click(window, "yes"); }, PromptAnswer::Yes},
        {[](QWidget* window) { Click(window, "no"); }, PromptAnswer::No},
        {[](QWidget* window) { QTest::keyClick(window, Qt::Key_Escape); }, PromptAnswer::No},
        {[](QWidget* window) { window->close(); }, PromptAnswer::No},
    };
    for (const auto& [act, answer] : cases) {
        QGuiApplication::clipboard()->clear();
        WhenShown([&act = act](QWidget* window) {
            EXPECT_EQ(window->findChild<QPushButton*>("yes")->text(), "Add 2 Files");
            const auto* text = window->findChild<QPlainTextEdit*>("reportText");
            EXPECT_EQ(text->horizontalScrollBar()->maximum(), 0) << "what is long is wrapped";
            Click(window, "copy");
            act(window);
        });
        EXPECT_EQ(UserPromptsQt().ShowReport(report), answer);
        EXPECT_EQ(QGuiApplication::clipboard()->text(),
                  "Unreadable: 1\n    /d/<b>.las: empty\n\nNo CRS" + ToQString(why) + ": 1\n    /d/a.las");
    }
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

TEST(OpenFileText, FiltersAreZeroEndedPairs) {
    EXPECT_EQ(OpenFileFilterText({}), L"");
    EXPECT_EQ(OpenFileFilterText({{L"LAS Files (*.las)", L"*.las;*.laz"}, {L"All Files (*.*)", L"*.*"}}),
              L"LAS Files (*.las)\0*.las;*.laz\0All Files (*.*)\0*.*\0\0"s);
    EXPECT_EQ(OpenFileFilterText({{L"", L"*.a"}, {L"b", L""}, {L"c", L"*.c"}}), L"c\0*.c\0\0"s)
        << "an empty text would end the list";
}

TEST(OpenFileText, ASelectionCountsItsFolderAndNamesWithOneSeparatorEach) {
    EXPECT_EQ(SelectionCharacters({L"/data/a.las", L"/data/bc.las"}), 6U + 6U + 7U);
}

TEST(OpenFileText, SelectionsBecomeFullPaths) {
    struct Case {
        std::wstring buffer;
        std::vector<std::wstring> paths;
    };
    const Case cases[] = {
        {L""s, {}},
        {L"\0\0\0"s, {}},
        {L"C:\\a b\\x.las\0\0rest of an earlier text"s, {L"C:\\a b\\x.las"}},
        {L"C:\\a\0y.las\0x.las\0\0"s, {L"C:\\a\\y.las", L"C:\\a\\x.las"}},
        {L"C:\\\0x.las\0y.las\0\0"s, {L"C:\\x.las", L"C:\\y.las"}},
        {L"\\\\server\\share\0x.las\0y.las\0\0"s, {L"\\\\server\\share\\x.las", L"\\\\server\\share\\y.las"}},
        {L"C:\\a\0x.las\0D:\\b\\y.las\0\\\\s\\c\\z.las\0\0"s,
         {L"C:\\a\\x.las", L"D:\\b\\y.las", L"\\\\s\\c\\z.las"}},
        {L"C:\\a\0x.las\0y"s, {L"C:\\a\\x.las", L"C:\\a\\y"}},  // full to the last character
    };
    for (const Case& c : cases) {
        EXPECT_THAT(ParseOpenFileSelection(c.buffer), ElementsAreArray(c.paths));
    }
}

TEST(QtText, KeepsEveryTextWhateverItHolds) {
    const std::wstring texts[] = {
        std::wstring(L"nul\0inside", 10),
        L"\u00e4\u4e2d",
        FromUtf8("\xF0\x9F\x8C\x8D globe"),
        FromUtf8("bad \xFF\xFE bytes"),
        std::wstring{L'a', static_cast<wchar_t>(0xD800)},
        std::wstring{static_cast<wchar_t>(0xDC00), L'b'},
        std::wstring{static_cast<wchar_t>(0xDC00), static_cast<wchar_t>(0xD800)},
    };
    for (const std::wstring& text : texts) {
        EXPECT_EQ(ToWide(ToQString(text)), text) << ToUtf8(text);
    }
    const QString lone = QString(QChar(0xD83C)) + QStringLiteral("x") + QChar(0xDF0D);
    EXPECT_EQ(ToQString(ToWide(lone)), lone);
    EXPECT_EQ(ToWide(QString::fromUtf8("\xF0\x9F\x8C\x8D")), L"\U0001F30D");
}

TEST(QtText, ATooltipShowsWhatLooksLikeMarkup) {
    for (const char* text : {"a<b>&\"c.tif", "<i>", "line\nline", "a  b"}) {
        const QString tooltip = TooltipText(QLatin1String(text));
        QTextDocument shown;
        Qt::mightBeRichText(tooltip) ? shown.setHtml(tooltip) : shown.setPlainText(tooltip);
        EXPECT_EQ(shown.toPlainText(), QLatin1String(text));
    }
}

}  // namespace
}  // namespace orvex
