#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QProgressBar>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "dialog/ControlWidget.h"
#include "dialog/DialogProgress.h"
#include "dialog/Images.h"
#include "dialog/grid/GridView.h"
#include "dialog/testing/ScriptedServices.h"
#include "raster/RasterCells.h"
#include "raster/testing/GeoTiff.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// One of the two pages by itself, with everything around it scripted.
template <typename Page, RasterUse Use>
class RasterPageFixture : public ::testing::Test, protected ScriptedServices {
  protected:
    explicit RasterPageFixture(FileListControls controls) : controls_(controls) { MakePage(); }

    void MakePage() {
        page.reset();
        page = std::make_unique<Page>(PageContext{services, &params, progress, images});
        page->resize(1000, 700);
        page->show();
    }
    std::wstring Tif(const std::wstring& name, int epsg = 25832) const {
        GeoTiff tif;
        tif.epsg = epsg;
        return tif.Write(folder, name);
    }

    template <typename Widget>
    Widget* Find(int id) const {
        auto* widget = page->template findChild<Widget*>(ControlName(id));
        EXPECT_NE(widget, nullptr) << id;
        return widget;
    }
    void Click(int id) const { QTest::mouseClick(Find<QAbstractButton>(id), Qt::LeftButton); }
    /// A click on the mark of a check box or radio button, which is at its left.
    void Check(int id) const {
        auto* button = Find<QAbstractButton>(id);
        QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
    }
    bool Checked(int id) const { return Find<QAbstractButton>(id)->isChecked(); }
    bool Enabled(int id) const { return Find<QWidget>(id)->isEnabled(); }
    GridView& Grid() const { return *Find<GridView>(controls_.grid); }

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

    std::vector<std::wstring> Shown(RasterColumn column) const {
        std::vector<std::wstring> texts;
        for (const RasterRow& row : page->Model().Rows()) {
            texts.push_back(RasterCellText(row, column, Use));
        }
        return texts;
    }
    std::vector<std::wstring> Names() const { return Shown(RasterColumn::FileName); }
    std::vector<std::wstring> Layers() const { return Shown(RasterColumn::Layer); }
    /// The WKT of a code as a project stores it.
    std::wstring Wkt(int epsg) const {
        return FromUtf8(
            InspectRasterFile(Tif(L"wkt" + std::to_wstring(epsg) + L".tif", epsg), Use).properties.wkt);
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
