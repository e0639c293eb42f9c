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
    bool hasRows = false;
    std::map<std::string, AddingReview> reviews;  // by page
    std::vector<std::size_t> selected;
    std::string handedOver;  // names of the pages
    /// What a page writes into the record.
    std::function<void(const std::string& name, AddFilesParams& params)> store = [](auto&, auto&) {};
    std::string throwWhenEnabled;  // the page that fails when it is selected
    std::string stopIn;            // the page whose reading is stopped by Escape
    DialogProgress* progress = nullptr;
};

class FakePage : public AddFilesPage {
  public:
    FakePage(std::string name, std::wstring extension, Journal& journal, AddFilesParams& params)
        : name_(std::move(name)), extension_(std::move(extension)), journal_(journal), params_(params) {
        auto* button = new QPushButton(QStringLiteral("act"));
        button->setObjectName(QStringLiteral("act"));
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this] { journal_.lines.push_back("act " + name_); });
    }
    bool ValidateAndStore() override {
        journal_.lines.push_back("store " + name_);
        journal_.store(name_, params_);
        if (journal_.throwOnStore == name_) {
            throw LDataError(L"disk full");
        }
        return journal_.refuse != name_;
    }
    void HandOver() noexcept override { journal_.handedOver += name_ + " "; }
    void Release() override { journal_.lines.push_back("release " + name_); }
    void AddPaths(const std::vector<std::wstring>& paths) override {
        journal_.lines.push_back("add " + name_);
        journal_.added.insert(journal_.added.end(), paths.begin(), paths.end());
        if (journal_.stopIn == name_) {
            const DialogProgress::Run run(*journal_.progress);
            journal_.progress->Stop();
        }
    }
    bool Accepts(const std::wstring& path) const override {
        return UpperExtensionOf(path) == extension_ || path.ends_with(L"folder");
    }
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::EnabledChange && isEnabled() && journal_.throwWhenEnabled == name_) {
            throw LDataError(L"no memory");
        }
    }
    bool HasRows() const override { return journal_.hasRows; }
    AddingReview Review() const override {
        const auto found = journal_.reviews.find(name_);
        return found == journal_.reviews.end() ? AddingReview() : found->second;
    }
    void SelectRecords(std::span<const std::size_t> records) override {
        journal_.lines.push_back("select " + name_);
        journal_.selected.assign(records.begin(), records.end());
    }
    bool NeedsCompanionFiles() const override { return journal_.needCompanion == name_; }

  private:
    std::string name_;
    std::wstring extension_;
    Journal& journal_;
    AddFilesParams& params_;
};

class Shell : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    Shell() {
        using P = AddFilesParams;
        Describe(PageKind::Las, text::kLasTab, 363, nullptr, "las", L".LAS");
        Describe(PageKind::Raster, text::kRasterTab, 385, &P::showRasterTab, "raster", L".TIF");
        Describe(PageKind::Feature, text::kFeatureTab, 390, &P::showFeatureTab, "feature", L".SHP");
        Describe(PageKind::Dem, text::kDemTab, 403, &P::showDemTab, "dem", L".DEM");
        Describe(PageKind::Photo, text::kPhotoTab, 406, &P::showPhotoTab, "photo", L".JPG");
        Describe(PageKind::CloudLas, text::kCloudTab, 410, &P::showCloudTab, "cloud", L".URL");
    }
    void Describe(PageKind kind, StringId caption, int templateId, bool AddFilesParams::*pageSwitch,
                  const char* name, const wchar_t* extension) {
        pages.push_back({.kind = kind,
                         .caption = caption,
                         .insertFailure = L"insert failed",
                         .createFailure = L"create failed",
                         .templateId = templateId,
                         .image = ImageIndex(8 + static_cast<int>(pages.size())),
                         .pageSwitch = pageSwitch,
                         .create = [=, this](const PageContext& context) {
                             journal.progress = &context.progress;
                             return std::make_unique<FakePage>(name, extension, journal, *context.params);
                         }});
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
