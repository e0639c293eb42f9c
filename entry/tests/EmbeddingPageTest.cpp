// docs/embedding.md lists what the component asks of a host's objects, and of the option store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "dialog/AddFilesDlg.h"
#include "dialog/AddingLidar.h"
#include "dialog/CompanionWarning.h"
#include "dialog/testing/ScriptedServices.h"
#include "entry/PageTable.h"
#include "settings/OptionCatalogue.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ContainerEq;
using Rows = std::set<std::string>;

/// Rows of the page's tables, up to the given number of cells, whose first cell begins with one of the words.
Rows DocumentedRows(std::initializer_list<std::string_view> words, std::size_t cells) {
    std::ifstream page(ORVEX_SOURCE_FOLDER "/docs/embedding.md");
    EXPECT_TRUE(page.is_open());
    Rows rows;
    for (std::string line; std::getline(page, line);) {
        const bool isRow = std::ranges::any_of(
            words, [&](std::string_view word) { return line.starts_with("| `" + std::string(word)); });
        std::size_t end = 0;
        for (std::size_t cell = 0; isRow && cell < cells; ++cell) {
            end = line.find(" |", end + 1);
        }
        if (isRow) {
            rows.insert(line.substr(0, end));
        }
    }
    return rows;
}

/// Type and default of a setting as the page gives them.
std::string TypeAndDefault(const SettingValue& value) {
    if (const auto* flag = std::get_if<std::int16_t>(&value)) {
        return std::string("boolean | ") + (*flag == 0 ? "false" : "true");
    }
    const std::string text = ToUtf8(std::get<std::wstring>(value));
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "number | " + text : "text | `" + text + '`';
}

class EmbeddingPage : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    EmbeddingPage() {
        using P = AddFilesParams;
        for (const auto page :
             {&P::showRasterTab, &P::showFeatureTab, &P::showDemTab, &P::showPhotoTab, &P::showCloudTab}) {
            params.*page = true;
        }
        AddFilesDlg dialog(params, services, AddFilesPages());
        EXPECT_EQ(dialog.Initialise(), kHostOk);
        dialog.show();
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("ok")), Qt::LeftButton);
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
    }

    AddFilesParams params;
};

TEST_F(EmbeddingPage, ListsTheSettingsThatTheDialogAsksFor) {
    Rows asked;
    for (const auto& [name, value] : hostObjects.asked) {
        EXPECT_EQ(name.first, L"AddFilesDlg");
        asked.insert("| `" + ToUtf8(name.second) + "` | " + TypeAndDefault(value));
    }
    EXPECT_THAT(DocumentedRows({"DEM", "DWG", "ShowAdv"}, 3), ContainerEq(asked));
}

TEST_F(EmbeddingPage, ListsTheOptionItemsThatTheComponentReads) {
    DecideAddingLidar(options, true, [](bool) { return LidarAnswer(); });
    params.lasPyramidType = kPyramidOrvexLas;
    params.orvexLasBackupOption = kOverwriteOriginals;
    ConfirmCompanionOverwrite(params, true, options, prompts);
    Rows asked;
    for (const OptionDescription& option : OptionCatalogue()) {
        const bool isStored =
            registry.Find(RegistryRoot::CurrentUser, L"AddFilesDlg", option.valueName) != nullptr;
        if (registry.asked.contains(option.valueName) || isStored) {
            asked.insert("| `" + ToUtf8(option.valueName) + "` | " + std::to_string(option.size));
        }
    }
    EXPECT_THAT(DocumentedRows({"opt"}, 2), ContainerEq(asked));
}

}  // namespace
}  // namespace orvex
