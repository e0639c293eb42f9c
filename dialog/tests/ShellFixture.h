#pragma once
// The shell of the Add Files dialog with pages that only write down what is asked of them.
#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include "dialog/AddFilesDlg.h"
#include "dialog/CTabCtrlEx.h"
#include "dialog/DialogProgress.h"
#include "dialog/testing/ScriptedServices.h"
#include "support/LDataError.h"

namespace orvex {

struct Journal {
    std::vector<std::string> lines;
    std::string refuse;         // the page that refuses OK
    std::string throwOnStore;   // the page whose validation throws
    std::string needCompanion;  // the page whose files need companion files
    std::vector<std::wstring> added;
    DialogProgress* progress = nullptr;
};

class FakePage : public AddFilesPage {
  public:
    FakePage(std::string name, std::wstring extension, Journal& journal)
        : name_(std::move(name)), extension_(std::move(extension)), journal_(journal) {
        auto* button = new QPushButton(QStringLiteral("act"));
        button->setObjectName(QStringLiteral("act"));
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this] { journal_.lines.push_back("act " + name_); });
    }
    bool ValidateAndStore() override {
        journal_.lines.push_back("store " + name_);
        if (journal_.throwOnStore == name_) {
            throw LDataError(L"disk full");
        }
        return journal_.refuse != name_;
    }
    void Release() override { journal_.lines.push_back("release " + name_); }
    void AddPaths(const std::vector<std::wstring>& paths) override {
        journal_.lines.push_back("add " + name_);
        journal_.added = paths;
    }
    bool Accepts(const std::wstring& path) const override { return UpperExtensionOf(path) == extension_; }
    bool NeedsCompanionFiles() const override { return journal_.needCompanion == name_; }

  private:
    std::string name_;
    std::wstring extension_;
    Journal& journal_;
};

inline PageDescription Describe(PageKind kind, StringId caption, int templateId, int image,
                                bool AddFilesParams::*pageSwitch, const char* name, const wchar_t* extension,
                                Journal& journal) {
    return {kind,
            caption,
            {},
            L"insert failed",
            {},
            L"create failed",
            templateId,
            image,
            pageSwitch,
            [=, &journal](const PageContext& context) {
                journal.progress = &context.progress;
                return std::make_unique<FakePage>(name, extension, journal);
            }};
}

class Shell : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    Shell() {
        const auto add = [this](auto... arguments) { pages.push_back(Describe(arguments..., journal)); };
        add(PageKind::Las, text::kLasTab, 363, 8, nullptr, "las", L".LAS");
        add(PageKind::Raster, text::kRasterTab, 385, 9, &AddFilesParams::showRasterTab, "raster", L".TIF");
        add(PageKind::Feature, text::kFeatureTab, 390, 10, &AddFilesParams::showFeatureTab, "feature",
            L".SHP");
        add(PageKind::Dem, text::kDemTab, 403, 11, &AddFilesParams::showDemTab, "dem", L".DEM");
        add(PageKind::Photo, text::kPhotoTab, 406, 12, &AddFilesParams::showPhotoTab, "photo", L".JPG");
        add(PageKind::CloudLas, text::kCloudTab, 410, 13, &AddFilesParams::showCloudTab, "cloud", L".URL");
    }

    void AllOn() {
        params.showRasterTab = params.showFeatureTab = params.showDemTab = true;
        params.showPhotoTab = params.showCloudTab = true;
    }
    std::unique_ptr<AddFilesDlg> Make() { return std::make_unique<AddFilesDlg>(params, services, pages); }
    std::unique_ptr<AddFilesDlg> Open() {
        auto dialog = Make();
        EXPECT_EQ(dialog->Initialise(), 0);
        dialog->show();
        return dialog;
    }
    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }
    std::optional<std::int32_t> StoredTab() {
        std::int32_t tab = 99;
        return options.Read(opt2AddFilesCurTabIndex, &tab, sizeof tab) == 0 ? std::nullopt
                                                                            : std::optional(tab);
    }

    Journal journal;
    std::vector<PageDescription> pages;
    AddFilesParams params;
};

}  // namespace orvex
