#include "cloud/page/AddCloudLASFileDlg.h"

#include <gmock/gmock.h>

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include "dialog/page/ControlWidget.h"
#include "dialog/page/Mnemonics.h"
#include "dialog/testing/ScriptedServices.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PresignedUrlDialog : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    PresignedUrlDialog() { Open(); }

    void Open() {
        dialog = std::make_unique<AddCloudLASFileDlg>(services, nullptr);
        dialog->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    }
    void OpenHolding(Qt::Key key, Qt::KeyboardModifier modifier) {
        QWidget keyboard;
        keyboard.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&keyboard));
        QTest::keyPress(keyboard.windowHandle(), key, modifier);
        Open();
        QTest::keyRelease(keyboard.windowHandle(), key, Qt::NoModifier);
    }
    QLineEdit& Field() const { return *dialog->findChild<QLineEdit*>("url"); }
    QPushButton& Button(int id) const { return *dialog->findChild<QPushButton*>(ControlName(id)); }
    void Click(int id) const { QTest::mouseClick(&Button(id), Qt::LeftButton); }
    std::wstring Notes() const { return ToWide(dialog->findChild<QLabel*>("urlNotes")->text()); }

    std::unique_ptr<AddCloudLASFileDlg> dialog;
};

TEST_F(PresignedUrlDialog, HasItsTexts) {
    EXPECT_EQ(ToWide(dialog->windowTitle()), Text(text::kPresignedUrlTitle));
    std::vector<std::wstring> texts{ToWide(dialog->findChild<QGroupBox*>()->title())};
    for (const auto* label : dialog->findChildren<QLabel*>()) {
        texts.push_back(ToWide(WithoutMnemonic(label->text())));
    }
    EXPECT_THAT(texts, ::testing::IsSupersetOf({Text(text::kPresignedUrlGroup), Text(text::kPresignedUrl),
                                                Text(text::kPresignedUrlHint)}));
    const std::pair<int, unsigned> buttons[] = {{358, 7554}, {359, 7556}, {360, 8006}};
    for (const auto& [id, caption] : buttons) {
        EXPECT_EQ(ToWide(WithoutMnemonic(Button(id).text())), Text(StringId{caption}));
    }
    EXPECT_TRUE(Button(358).isDefault());
}

TEST_F(PresignedUrlDialog, OkGivesTheUrlAsTypedButTrimmed) {
    struct Case {
        std::wstring typed, url;  ///< empty: refused
    };
    const Case cases[] = {{L"", L""},
                          {L" \t\r\n ", L""},
                          {L"  https://h/a.las?sig=x%2F \n", L"https://h/a.las?sig=x%2F"},
                          {L"<\"https://h/a\r\n b.las\">", L"<\"https://h/a\r\n b.las\">"},
                          {L"ftp:nonsense", L"ftp:nonsense"},
                          {std::wstring(100'000, L'a'), std::wstring(100'000, L'a')}};
    for (const Case& c : cases) {
        Open();
        prompts.shown.clear();
        Field().setText(ToQString(c.typed));
        Click(358);
        EXPECT_EQ(dialog->isVisible(), c.url.empty());
        EXPECT_EQ(dialog->Url(), c.url);
        ASSERT_EQ(prompts.shown.size(), c.url.empty() ? 1U : 0U);
        for (const Prompt& prompt : prompts.shown) {
            EXPECT_EQ(prompt.text, Text(text::kPresignedUrlEmpty));
            EXPECT_EQ(prompt.caption, Text(text::kInvalidInputCaption));
            EXPECT_EQ(prompt.icon, PromptIcon::Error);
            Click(359);
            EXPECT_EQ(dialog->result(), QDialog::Rejected);
            EXPECT_EQ(dialog->Url(), L"");
        }
    }
}

TEST_F(PresignedUrlDialog, SaysWhatIsKnownOfTheLinkWhileItIsTyped) {
    EXPECT_EQ(Notes(), L"");
    const QString url = "https://h/a.las?X-Amz-Date=20200101T000000Z&X-Amz-Expires=60&X-Amz-Signature=c0ffee";
    QTest::keyClicks(&Field(), url);
    EXPECT_EQ(Notes(), FormatText(Text(text::kCloudLinkExpired), {L"2020-01-01 00:01"}));
    Field().setText("<" + url + ">");
    EXPECT_THAT(Notes(), HasSubstr(Text(text::kCloudUrlBrackets)));
    EXPECT_THAT(Notes(), ::testing::Not(HasSubstr(L"c0ffee")));
    Field().clear();
    EXPECT_EQ(Notes(), L"");
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(PresignedUrlDialog, KeysReachEverything) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    EXPECT_TRUE(Field().hasFocus());
    for (const int id : {360, 358, 359}) {
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(Button(id).hasFocus()) << id;
    }
    QTest::keyClick(dialog->focusWidget(), Qt::Key_F1);
    Click(360);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::PresignedUrl, HelpTopic::PresignedUrl));
    help.works = false;
    Click(360);
    EXPECT_EQ(prompts.shown.back().icon, PromptIcon::Warning);
    QTest::keyClick(&Field(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    Open();
    Field().setText("https://h/a.las");
    QTest::keyClick(&Field(), Qt::Key_Return);
    EXPECT_EQ(dialog->Url(), L"https://h/a.las");
}

TEST_F(PresignedUrlDialog, FitsTheScreenAndComesBackWhereItWas) {
    const QRect screen = dialog->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(dialog->frameGeometry()));
    EXPECT_EQ(dialog->width(), std::min(1200, screen.width() - 16));
    for (const int id : {358, 359, 360}) {
        EXPECT_EQ(Button(id).visibleRegion().boundingRect().size(), Button(id).size()) << id;
    }
    dialog->resize(dialog->width(), 300);
    dialog->move(40, 60);
    Click(359);
    Open();
    EXPECT_EQ(dialog->height(), 300);
    EXPECT_TRUE(screen.contains(dialog->frameGeometry()));
    EXPECT_EQ(Field().text(), "");
    OpenHolding(Qt::Key_Control, Qt::ControlModifier);
    EXPECT_NE(dialog->height(), 300);
    OpenHolding(Qt::Key_Shift, Qt::ShiftModifier);
    EXPECT_EQ(Field().text(), "https://example.com/lidar/example.laz");
    dialog->SetUrl(L"https://h/typed.las");
    EXPECT_EQ(Field().text(), "https://h/typed.las");
}

}  // namespace
}  // namespace orvex
