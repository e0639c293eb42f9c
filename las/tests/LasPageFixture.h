#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QProgressBar>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "dialog/DialogProgress.h"
#include "dialog/Images.h"
#include "dialog/grid/GridView.h"
#include "dialog/testing/ScriptedServices.h"
#include "host/utilities/testing/LazSamples.h"
#include "las/AddLASFilesModel.h"
#include "las/AddLASFilesPP.h"
#include "las/testing/LasBuilder.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// The page by itself, with everything around it scripted.
class LasPage : public ::testing::Test, protected ScriptedServices {
  protected:
    LasPage() { MakePage(); }

    void MakePage() {
        page.reset();
        page = std::make_unique<AddLASFilesPP>(PageContext{services, &params, progress, images});
        page->resize(1000, 700);
        page->show();
    }
    std::wstring Las(const std::wstring& name, int epsg = 25832) const {
        return folder.Write(
            name, LasBuilder(12, 1).AddPoints(9).ProjectedEpsg(static_cast<std::uint16_t>(epsg)).Build());
    }
    std::wstring Laz(const std::wstring& name) const {
        WriteSample(folder.Name(name), {}, true);
        return folder.Name(name);
    }
    std::vector<std::wstring> ManyLas(int count) const {
        std::vector<std::wstring> paths;
        paths.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            paths.push_back(Las(L"tile" + std::to_wstring(i) + L".las"));
        }
        return paths;
    }

    template <typename Widget>
    Widget* Find(const char* name) const {
        auto* widget = page->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void Click(const char* name) const { QTest::mouseClick(Find<QAbstractButton>(name), Qt::LeftButton); }
    /// A click on the mark of a check box or radio button, which is at its left.
    void Check(const char* name) const {
        auto* button = Find<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
    }
    bool Enabled(const char* name) const { return Find<QWidget>(name)->isEnabled(); }
    void PickAndAdd(std::vector<std::wstring> paths) {
        pickers.files.push_back({PickOutcome::Picked, std::move(paths)});
        Click("c253");
    }
    GridView& Grid() const { return *Find<GridView>("c251"); }
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (const LasRow& row : page->Model().Rows()) {
            names.push_back(FileNameOf(row.inspection.path));
        }
        return names;
    }
    std::vector<std::wstring> Layers() const {
        std::vector<std::wstring> layers;
        for (const LasRow& row : page->Model().Rows()) {
            layers.push_back(row.layer);
        }
        return layers;
    }

    TemporaryFolder folder;
    AddFilesParams params;
    QProgressBar bar;
    DialogProgress progress{&bar};
    std::vector<QIcon> images = MakeImageList();
    std::unique_ptr<AddLASFilesPP> page;
};

}  // namespace orvex::testing
