#pragma once
// The browser with everything around it scripted; the cloud-account library is the test's choice.
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "cloud/page/BrowseCloudLayersDlg.h"
#include "cloud/page/CloudListPane.h"
#include "dialog/grid/GridView.h"
#include "dialog/testing/ScriptedServices.h"

namespace orvex::testing {

class BrowserFixture : public ::testing::Test, protected ScriptedServices {
  protected:
    void Open() {
        dialog = std::make_unique<BrowseCloudLayersDlg>(nullptr, services, nullptr, library);
        for (auto* model : {&Model("projects"), &Model("layers")}) {
            new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::Fatal, model);
        }
        dialog->show();
        dialog->activateWindow();
    }
    template <typename Condition>
    static bool Until(Condition condition) {
        return QTest::qWaitFor(condition, 30'000);
    }

    template <typename Widget>
    Widget& Find(const char* name) const {
        auto* widget = dialog->findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }
    CloudListPane& Pane(const char* list) const { return Find<CloudListPane>(list); }
    GridView& Grid(const char* list) const { return Pane(list).Grid(); }
    GridModel& Model(const char* list) const { return *static_cast<GridModel*>(Grid(list).Table()->model()); }
    bool IsIdle(const char* list) const { return Pane(list).State() == CloudListState::Idle; }
    bool HasFailed(const char* list) const { return Pane(list).State() == CloudListState::Failed; }
    std::wstring Status(const char* list) const {
        return ToWide(Find<QLabel>((std::string(list) + "Status").c_str()).text());
    }
    std::wstring Message(const char* list) const { return ToWide(Grid(list).ShownMessage()); }
    std::vector<std::wstring> Column(const char* list, int column) const {
        const GridModel& model = Model(list);
        std::vector<std::wstring> names;
        for (int row = 0; row < model.rowCount(); ++row) {
            names.push_back(model.CellText(model.RecordOfRow(row), column));
        }
        return names;
    }
    std::vector<std::wstring> Layers() const { return Column("layers", 0); }
    void Click(const char* button) const {
        QTest::mouseClick(&Find<QAbstractButton>(button), Qt::LeftButton);
    }
    QPoint At(const char* list, int row) const {
        return {8, Grid(list).Table()->rowViewportPosition(row) + 4};
    }
    void ClickRow(const char* list, int row, Qt::KeyboardModifiers keys = {}) const {
        QTest::mouseClick(Grid(list).Table()->viewport(), Qt::LeftButton, keys, At(list, row));
    }
    void Type(const char* list, const char* text) const {
        auto* words = Pane(list).findChild<QLineEdit*>(QStringLiteral("filterWords"));
        words->clear();
        QTest::keyClicks(words, QLatin1String(text));
    }
    std::vector<std::wstring> Selected() const {
        std::vector<std::wstring> names;
        for (const CloudLayer& layer : dialog->SelectedLayers()) {
            names.push_back(layer.name);
        }
        return names;
    }
    bool CanAdd() const { return Find<QPushButton>("ok").isEnabled(); }

    CloudLibrary library;  ///< the real one
    std::unique_ptr<BrowseCloudLayersDlg> dialog;
};

}  // namespace orvex::testing
