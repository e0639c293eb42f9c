#include "dialog/AddingLidar.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
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
        {"b", {}, false},
        {"cd", {text::kLidarDamagedFiles}, false},
        {"ab", {text::kLidarCrsMismatch}, false},
        {"ac", {text::kLidarCrsMismatch}, false},
        {"bc", {text::kLidarCrsDiffer}, false},
        {"bcd", {text::kLidarCrsDiffer, text::kLidarDamagedFiles}, false},
        {"ef", {text::kLidarAlreadyInProject}, false},
        {"eg", {text::kLidarCannotOpen}, false},
        {"fg", {text::kLidarNothingToAdd}, true},
        {"aeg", {text::kLidarCannotOpen}, false},
        {"abcdefg", {text::kLidarCrsMismatch, text::kLidarDamagedFiles, text::kLidarNothingToAdd}, true},
        {"abdeg", {text::kLidarCrsMismatch, text::kLidarDamagedFiles, text::kLidarCannotOpen}, false},
    };
    for (const Case& c : cases) {
        const auto has = [&](char flag) { return std::string(c.flags).find(flag) != std::string::npos; };
        testing::ScriptedPrompts prompts;
        const LidarFindings findings{has('a'), has('b'), has('c'), has('d'), has('e'), has('f'), has('g')};
        ShowLidarMessages(findings, L"Caption", prompts);
        EXPECT_EQ(IsNothingToAdd(findings), c.stop) << c.flags;
        ASSERT_EQ(prompts.shown.size(), c.texts.size()) << c.flags;
        for (std::size_t i = 0; i < c.texts.size(); ++i) {
            EXPECT_EQ(prompts.shown[i].text, Text(c.texts[i])) << c.flags;
            EXPECT_EQ(prompts.shown[i].icon,
                      c.texts[i] == text::kLidarCrsDiffer ? PromptIcon::Information : PromptIcon::Warning);
        }
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
    const std::pair<std::uint8_t, AddLidarChoice> cases[] = {
        {1, ADD_LIDAR_READ_ONLY}, {2, ADD_LIDAR_READ_WRITE}, {255, ADD_LIDAR_READ_ONLY}};
    for (const auto& [stored, choice] : cases) {
        ASSERT_TRUE(options.Put(opt2ShowAddReadWriteDlg, stored));
        EXPECT_EQ(Decide(false), choice) << int{stored};
        EXPECT_EQ(asked, 0);
    }
}

TEST_F(LidarDecision, AnAnswerIsKeptOnlyWhenTicked) {
    const struct {
        AddLidarChoice choice;
        bool keep;
        int stored;
        AddLidarChoice next;
    } cases[] = {
        {ADD_LIDAR_READ_WRITE, false, 0, ADD_LIDAR_NOT_AT_ALL},
        {ADD_LIDAR_READ_ONLY, true, 1, ADD_LIDAR_READ_ONLY},
        {ADD_LIDAR_READ_WRITE, true, 2, ADD_LIDAR_READ_WRITE},
        {ADD_LIDAR_NOT_AT_ALL, true, 1, ADD_LIDAR_READ_ONLY},
    };
    for (const auto& c : cases) {
        options.Put(opt2ShowAddReadWriteDlg, std::uint8_t{0});
        EXPECT_EQ(Decide(true, {c.choice, c.keep}), c.choice);
        EXPECT_EQ(Stored(), c.stored);
        EXPECT_EQ(Decide(true, {ADD_LIDAR_NOT_AT_ALL, false}), c.next);
    }
}

TEST(AddingLidarDlg, OkAloneTellsWhatWasChosenAndReadWriteOnlyWhereItIsAllowed) {
    const struct {
        bool isAllowed;
        const char* choose;
        const char* end;
        AddLidarChoice choice;
        bool keep;
    } cases[] = {{true, "readWrite", "ok", ADD_LIDAR_READ_WRITE, true},
                 {true, "notAtAll", "ok", ADD_LIDAR_NOT_AT_ALL, true},
                 {true, "notAtAll", "cancel", ADD_LIDAR_READ_ONLY, false},
                 {false, "readWrite", "ok", ADD_LIDAR_READ_ONLY, true}};
    for (const auto& c : cases) {
        CAddingLidarDlg dialog(c.isAllowed);
        dialog.show();
        for (const char* name : {c.choose, "doNotAskAgain", c.end}) {
            auto* button = dialog.findChild<QAbstractButton*>(QLatin1String(name));
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        }
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.Answer().choice, c.choice) << c.choose << c.end;
        EXPECT_EQ(dialog.Answer().doNotAskAgain, c.keep) << c.choose << c.end;
    }
}

}  // namespace
}  // namespace orvex
