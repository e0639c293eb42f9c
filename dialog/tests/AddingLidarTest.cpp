#include "dialog/AddingLidar.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "dialog/CAddingLidarDlg.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"

namespace orvex {
namespace {

TEST(LidarMessages, FollowFromTheFindings) {
    struct Case {
        const char* flags;  // a to g; a letter that is there is true
        std::vector<StringId> texts;
        bool stop;
    };
    const Case cases[] = {
        {"", {}, false},
        {"a", {}, false},
        {"b", {}, false},
        {"c", {}, false},
        {"ab", {text::kLidarCrsMismatch}, false},
        {"ac", {text::kLidarCrsMismatch}, false},
        {"abc", {text::kLidarCrsMismatch}, false},
        {"bc", {text::kLidarCrsDiffer}, false},
        {"d", {text::kLidarDamagedFiles}, false},
        {"bcd", {text::kLidarCrsDiffer, text::kLidarDamagedFiles}, false},
        {"e", {}, false},
        {"f", {}, false},
        {"g", {}, false},
        {"ef", {text::kLidarAlreadyInProject}, false},
        {"eg", {text::kLidarCannotOpen}, false},
        {"fg", {text::kLidarNothingToAdd}, true},
        {"efg", {text::kLidarNothingToAdd}, true},
        {"abcdefg", {text::kLidarCrsMismatch, text::kLidarDamagedFiles, text::kLidarNothingToAdd}, true},
        {"abdeg", {text::kLidarCrsMismatch, text::kLidarDamagedFiles, text::kLidarCannotOpen}, false},
    };
    for (const Case& c : cases) {
        const auto has = [&](char flag) { return std::string(c.flags).find(flag) != std::string::npos; };
        testing::ScriptedPrompts prompts;
        EXPECT_EQ(ShowLidarMessages({has('a'), has('b'), has('c'), has('d'), has('e'), has('f'), has('g')},
                                    L"Caption", prompts),
                  c.stop)
            << c.flags;
        std::vector<std::wstring> wanted;
        for (const StringId id : c.texts) {
            wanted.push_back(Text(id));
        }
        std::vector<std::wstring> shown;
        for (const Prompt& prompt : prompts.shown) {
            shown.push_back(prompt.text);
            EXPECT_EQ(prompt.caption, L"Caption");
            EXPECT_EQ(prompt.buttons, PromptButtons::Ok);
            EXPECT_EQ(prompt.icon, prompt.text == Text(text::kLidarCrsDiffer) ? PromptIcon::Information
                                                                              : PromptIcon::Warning);
        }
        EXPECT_EQ(shown, wanted) << c.flags;
    }
}

class LidarDecision : public ::testing::Test {
  protected:
    AddLidarChoice Decide(bool allowed, LidarAnswer answer = {}) {
        return DecideAddingLidar(options, allowed, [&](bool readWriteAllowed) {
            ++asked;
            EXPECT_EQ(readWriteAllowed, allowed);
            return answer;
        });
    }
    int Stored() const { return options.Get(opt2ShowAddReadWriteDlg, std::uint8_t{0}); }

    testing::FakeRegistry registry;
    OptionStore options{registry};
    int asked = 0;
};

TEST_F(LidarDecision, AStoredAnswerIsGivenWithoutAsking) {
    struct Case {
        std::uint8_t stored;
        AddLidarChoice choice;
    };
    for (const Case& c : {Case{1, ADD_LIDAR_READ_ONLY}, Case{2, ADD_LIDAR_READ_WRITE},
                          Case{7, ADD_LIDAR_READ_ONLY}, Case{255, ADD_LIDAR_READ_ONLY}}) {
        ASSERT_TRUE(options.Put(opt2ShowAddReadWriteDlg, c.stored));
        EXPECT_EQ(Decide(false), c.choice) << int{c.stored};
        EXPECT_EQ(asked, 0);
    }
}

TEST_F(LidarDecision, AnAnswerIsKeptOnlyWhenTicked) {
    struct Case {
        AddLidarChoice choice;
        bool keep;
        int stored;
        AddLidarChoice next;
    };
    const Case cases[] = {
        {ADD_LIDAR_READ_ONLY, false, 0, ADD_LIDAR_NOT_AT_ALL},
        {ADD_LIDAR_READ_WRITE, false, 0, ADD_LIDAR_NOT_AT_ALL},
        {ADD_LIDAR_READ_ONLY, true, 1, ADD_LIDAR_READ_ONLY},
        {ADD_LIDAR_READ_WRITE, true, 2, ADD_LIDAR_READ_WRITE},
        {ADD_LIDAR_NOT_AT_ALL, true, 1, ADD_LIDAR_READ_ONLY},
    };
    for (const Case& c : cases) {
        options.Put(opt2ShowAddReadWriteDlg, std::uint8_t{0});
        EXPECT_EQ(Decide(true, {c.choice, c.keep}), c.choice);
        EXPECT_EQ(Stored(), c.stored);
        EXPECT_EQ(Decide(true, {ADD_LIDAR_NOT_AT_ALL, false}), c.next);
    }
}

struct Window {
    explicit Window(bool readWriteAllowed) : dialog(readWriteAllowed) { dialog.show(); }
    template <typename Button>
    Button* Find(const char* name) {
        return dialog.findChild<Button*>(QLatin1String(name));
    }
    void Click(const char* name) {
        auto* button = Find<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    CAddingLidarDlg dialog;
};

TEST(AddingLidarDlg, OkTellsWhatWasChosen) {
    Window window(true);
    EXPECT_TRUE(window.Find<QRadioButton>("readOnly")->isChecked());
    window.Click("readWrite");
    window.Click("doNotAskAgain");
    window.Click("ok");
    EXPECT_FALSE(window.dialog.isVisible());
    EXPECT_EQ(window.dialog.Answer().choice, ADD_LIDAR_READ_WRITE);
    EXPECT_TRUE(window.dialog.Answer().doNotAskAgain);
}

TEST(AddingLidarDlg, CancelTransfersNothing) {
    Window window(true);
    window.Click("notAtAll");
    window.Click("doNotAskAgain");
    window.Click("cancel");
    EXPECT_EQ(window.dialog.Answer().choice, ADD_LIDAR_READ_ONLY);
    EXPECT_FALSE(window.dialog.Answer().doNotAskAgain);
}

TEST(AddingLidarDlg, ReadWriteCannotBeChosenWhenItIsNotAllowed) {
    Window window(false);
    EXPECT_FALSE(window.Find<QRadioButton>("readWrite")->isEnabled());
    window.Click("readWrite");
    window.Click("ok");
    EXPECT_EQ(window.dialog.Answer().choice, ADD_LIDAR_READ_ONLY);
}

}  // namespace
}  // namespace orvex
