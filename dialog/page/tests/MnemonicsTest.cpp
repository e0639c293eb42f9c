#include "dialog/page/Mnemonics.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace orvex {
namespace {

TEST(Mnemonics, EachTextGetsALetterOfItsOwn) {
    std::set<QChar> used;
    const std::pair<const char*, const char*> cases[] = {
        {"Add Files...", "&Add Files..."},
        {"Add Folder...", "Add &Folder..."},
        {"Apply &Now", "Apply &Now"},
        {"None", "N&one"},
        {"Backup && Compress", "&Backup && Compress"},
        {"Backup && Can", "Backup && &Can"},
        {">>", ">>"},
        {"", ""},
        {"ANO", "ANO"},
        {"Öffnen", "&Öffnen"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(WithMnemonic(QString::fromUtf8(text), used), QString::fromUtf8(expected)) << text;
    }
}

TEST(Mnemonics, ButtonsAndLabelsWithABuddyGetOne) {
    QWidget page;
    auto* button = new QPushButton("Find", &page);
    auto* caption = new QLabel("Folder", &page);
    auto* edit = new QLineEdit(&page);
    auto* text = new QLabel("Free", &page);
    caption->setBuddy(edit);
    AssignMnemonics(page);
    EXPECT_EQ(button->text(), "&Find");
    EXPECT_EQ(caption->text(), "F&older");
    EXPECT_EQ(text->text(), "Free");
}

}  // namespace
}  // namespace orvex
