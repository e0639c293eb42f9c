#include "dialog/page/OptionForm.h"

#include <gtest/gtest.h>

#include <QComboBox>

#include "support/LDataError.h"
#include "support/testing/Scripted.h"

namespace orvex {
namespace {

constexpr OptionGroup kGroups[] = {{.id = 1, .caption = text::kOptions}};
constexpr OptionChoice kVersions[] = {{3, L"1.3"}, {4, L"1.4"}};
constexpr OptionChoice kFormats[] = {{0, L"0"}, {1, L"1"}};

bool failing = false;

std::span<const OptionChoice> Formats(const AddFilesParams&) {
    if (failing) {
        throw LDataError(L"no formats");
    }
    return kFormats;
}

constexpr OptionRow kRows[] = {
    {.control = OptionControl::List,
     .id = 2,
     .group = 1,
     .member = &AddFilesParams::demLasVersion,
     .fallback = {4},
     .choices = kVersions},
    {.control = OptionControl::List,
     .id = 3,
     .group = 1,
     .member = &AddFilesParams::demPointFormat,
     .choicesFor = Formats},
};

TEST(OptionForm, AChangeThatFailsIsToldAndTheNextOneCounts) {
    testing::ScriptedPrompts prompts;
    const OptionTable table{kGroups, kRows};
    OptionForm form(table, prompts);
    auto* versions = form.findChild<QComboBox*>("c2");
    failing = true;
    versions->setCurrentIndex(0);
    failing = false;
    ASSERT_EQ(prompts.shown.size(), 1U);
    EXPECT_EQ(prompts.shown[0].text, L"An exception occurred in OnOptions():\n\nno formats");
    versions->setCurrentIndex(1);
    EXPECT_EQ(form.Values().record.demLasVersion, 4);
    form.findChild<QComboBox*>("c3")->setCurrentIndex(1);
    EXPECT_EQ(form.Values().record.demPointFormat, 1);
}

}  // namespace
}  // namespace orvex
