#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QProgressBar>
#include <QTest>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dialog/DialogProgress.h"
#include "dialog/Images.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/AddFilesPage.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/FileListControls.h"
#include "dialog/testing/ScriptedServices.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A page with a list of files by itself, with everything around it scripted. The derived class makes the
/// page.
template <typename Page>
class PageFixture : public ::testing::Test, protected ScriptedServices {
  protected:
    explicit PageFixture(FileListControls controls) : controls_(controls) {}

    /// A new page in place of the one before; what a page is made of besides its context is given.
    template <typename... More>
    void MakePage(More&&... more) {
        page.reset();
        page = std::make_unique<Page>(PageContext{services, &params, progress, images},
                                      std::forward<More>(more)...);
        page->resize(1000, 700);
        page->show();
    }

    /// By object name or control id.
    template <typename Widget = QWidget>
    Widget* Find(const QString& name) const {
        auto* widget = page->template findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    template <typename Widget = QWidget>
    Widget* Find(int id) const {
        return Find<Widget>(ControlName(id));
    }
    template <typename Id>
    void Click(Id id) const {
        QTest::mouseClick(Find<QAbstractButton>(id), Qt::LeftButton);
    }
    /// A click on the mark of a check box or radio button, which is at its left.
    template <typename Id>
    void Check(Id id) const {
        auto* button = Find<QAbstractButton>(id);
        QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
    }
    template <typename Id>
    bool Checked(Id id) const {
        return Find<QAbstractButton>(id)->isChecked();
    }
    template <typename Id>
    bool Enabled(Id id) const {
        return Find(id)->isEnabled();
    }
    GridView& Grid() const { return *Find<GridView>(controls_.grid); }

    /// Presses "Add Files..." and picks these.
    void PickAndAdd(std::vector<std::wstring> paths) {
        pickers.files.push_back({PickOutcome::Picked, std::move(paths)});
        Click(controls_.addFiles);
    }
    /// Presses "Add Folder..." and answers what is asked.
    void AddFolder(const std::wstring& path, PromptAnswer subfolders) {
        pickers.folders.push_back(path);
        prompts.answers.push_back(subfolders);
        Click(controls_.addFolder);
    }

    const FileListControls controls_;
    TemporaryFolder folder;
    AddFilesParams params;
    QProgressBar bar;
    DialogProgress progress{&bar};
    std::vector<QIcon> images = MakeImageList();
    std::unique_ptr<Page> page;
};

}  // namespace orvex::testing
