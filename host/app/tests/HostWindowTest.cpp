#include "host/app/HostWindow.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "host/app/HostText.h"
#include "host/app/MapView.h"
#include "host/app/ProjectFile.h"
#include "host/app/RecordIntake.h"
#include "host/app/tests/TestRecord.h"
#include "host/objects/HostClasses.h"
#include "support/Files.h"
#include "support/QtText.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::kDegrees;
using testing::kUtm;
using testing::Record;
using testing::TemporaryFolder;

/// Clicks in the modal windows that come, one after the other, by the names of their buttons.
class Clicks {
  public:
    explicit Clicks(std::vector<std::string> names) : names_(std::move(names)) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Next(); });
        timer_.start(1);
    }

    bool AllDone() const { return names_.empty(); }

  private:
    void Next() {
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr || names_.empty()) {
            return;
        }
        auto* button = window->findChild<QAbstractButton*>(QString::fromStdString(names_.front()));
        if (button != nullptr) {
            names_.erase(names_.begin());
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        }
    }

    std::vector<std::string> names_;
    QTimer timer_;
};

class HostWindowTest : public ::testing::Test {
  protected:
    HostWindowTest() { window_.OpenProject(ToQString(folder_.Name(L"project"))); }

    /// A record with files that exist, in layers of two coordinate systems.
    void AddTiles(Record& record, std::initializer_list<const wchar_t*> names, const std::wstring& layer,
                  const std::string& wkt, double west) {
        for (const wchar_t* name : names) {
            folder_.Write(name, "content");
            auto& info = record.AddFile(FromPath(folder_.Path()), name, layer, wkt);
            info.low = {west, 0, 0};
            info.high = {west += 10, 10, 10};
        }
    }
    QModelIndexList SelectedRows() { return Tree().selectionModel()->selectedRows(); }
    QTreeView& Tree() { return *window_.findChild<QTreeView*>("layers"); }
    MapView& Map() { return *window_.findChild<MapView*>("footprints"); }
    QAction& Action(const char* name) { return *window_.findChild<QAction*>(name); }

    TemporaryFolder folder_;
    PrivateSettings settings_{ToPath(folder_.Name(L"settings"))};
    HostPreferences preferences_{QString()};
    HostWindow window_{preferences_};
};

TEST_F(HostWindowTest, WhatIsAddedIsSelectedAndShown) {
    Record first;
    AddTiles(first, {L"a.las", L"b.las"}, L"one", kUtm, 0);
    window_.TakeRecord(first);
    EXPECT_EQ(SelectedRows().size(), 2);
    window_.show();
    const QPointF middle = Map().mapToScene(Map().viewport()->rect().center());
    EXPECT_NEAR(middle.x(), 10, 1);

    Record second;
    second.existingLasLayers = window_.CurrentProject().LayersForDialog(LayerKind::Las);
    AddTiles(second, {L"far.las"}, L"one", kUtm, 5000);
    AddTiles(second, {L"other.las"}, L"two", kDegrees, 100);
    window_.TakeRecord(second);
    ASSERT_EQ(SelectedRows().size(), 2);
    EXPECT_EQ(SelectedRows()[0].data(), "far.las");
    EXPECT_EQ(SelectedRows()[1].data(), "other.las");
    EXPECT_NEAR(Map().mapToScene(Map().viewport()->rect().center()).x(), 5005, 1)
        << "not all of the layer that the file went to";
    Action("copyPath").trigger();
    EXPECT_EQ(QApplication::clipboard()->text(),
              ToQString(folder_.Name(L"far.las") + L"\n" + folder_.Name(L"other.las")));
    QTest::mouseClick(Map().viewport(), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_TRUE(SelectedRows().isEmpty()) << "a click beside the files";
    EXPECT_FALSE(Action("copyPath").isEnabled());
}

TEST_F(HostWindowTest, EachChangeCanBeUndoneAndIsSaved) {
    Record record;
    AddTiles(record, {L"a.las", L"b.las"}, L"one", kUtm, 0);
    AddTiles(record, {L"c.las"}, L"two", kUtm, 0);
    window_.TakeRecord(record);
    const Project added = window_.CurrentProject();
    Tree().collapse(Tree().model()->index(1, 0));
    Tree().setCurrentIndex(Tree().model()->index(0, 0));
    Action("remove").trigger();
    ASSERT_EQ(window_.CurrentProject().layers.size(), 1U) << "the layer with its files";
    EXPECT_FALSE(Action("remove").isEnabled()) << "nothing is selected";
    EXPECT_FALSE(Tree().isExpanded(Tree().model()->index(0, 0))) << "folded by the user";
    Action("undo").trigger();
    EXPECT_EQ(window_.CurrentProject(), added);
    EXPECT_FALSE(Tree().isExpanded(Tree().model()->index(1, 0)));
    QString problem;
    EXPECT_EQ(LoadProject(window_.ProjectFolder(), problem), added);
    Action("undo").trigger();
    EXPECT_TRUE(window_.CurrentProject().IsEmpty());
    Action("redo").trigger();
    EXPECT_EQ(window_.CurrentProject(), added);
    // Another project has no past.
    window_.OpenProject(ToQString(folder_.Name(L"second")));
    EXPECT_FALSE(Action("undo").isEnabled());
    EXPECT_TRUE(window_.CurrentProject().IsEmpty());
}

TEST_F(HostWindowTest, FilesThatAreLeftOutAreCountedAndNamed) {
    Record first;
    AddTiles(first, {L"there.las"}, L"one", kUtm, 0);
    window_.TakeRecord(first);
    Record record;
    AddTiles(record, {L"there.las", L"gone.las", L"cut.las", L"good.las"}, L"one", kUtm, 0);
    RemoveFile(folder_.Name(L"gone.las"));
    static_cast<testing::FakeLasFileInfo*>(record.lasFileDetails[folder_.Name(L"cut.las")])->damaged = true;
    QString told;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&told] {
        if (auto* report = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            told = report->findChild<QPlainTextEdit*>("reportText")->toPlainText();
            report->accept();
        }
    });
    timer.start(1);
    window_.TakeRecord(record);
    EXPECT_EQ(told.count("gone.las"), 1);
    for (const char* name : {"there.las", "cut.las", "good.las"}) {
        EXPECT_FALSE(told.contains(name)) << "the dialog has told of " << name;
        const QString outcome = window_.LastRecord().section("\n\n", 0, 0);
        EXPECT_EQ(outcome.count(name), std::string_view(name) == "good.las" ? 0 : 1) << name;
    }
    const std::wstring oneOfFour = FormatText(Text(text::kAddedOf), {1, 4});
    EXPECT_TRUE(window_.LastRecord().startsWith(HostText(text::kAddedToLayer, {oneOfFour, L"one"})))
        << window_.LastRecord().toStdString();
    EXPECT_EQ(window_.CurrentProject().FileCount(), 2U);
}

TEST_F(HostWindowTest, TheLidarQuestionComesWhereItsAnswerCanDifferAndDecides) {
    struct Case {
        const char* what;
        bool chosenReadWrite;
        bool writable;
        std::vector<std::string> answer;  ///< clicks in the question; none: it does not come
        std::size_t files;
        bool readOnly;
    };
    // An answer that is to be remembered holds for the cases after it.
    for (const Case& c : {
             Case{"chosen read-only", false, true, {}, 1, true},
             Case{"chosen read-write", true, true, {}, 1, false},
             Case{"cannot be written", true, false, {"readWrite", "ok"}, 1, true},
             Case{"do not add", true, false, {"notAtAll", "ok"}, 0, true},
             Case{"remembered", true, false, {"doNotAskAgain", "ok"}, 1, true},
             Case{"as remembered", true, true, {}, 1, true},
         }) {
        SCOPED_TRACE(c.what);
        Record record;
        record.lasOpenSetting = c.chosenReadWrite;
        AddTiles(record, {L"a.las"}, L"one", kUtm, 0);
        auto* info = static_cast<testing::FakeLasFileInfo*>(record.lasFileDetails.begin()->second);
        info->readOnly = !c.chosenReadWrite;
        info->name = c.writable ? info->name : folder_.Name(L"nobody can write what is not there.las");
        Project project;
        const Clicks clicks(c.answer);
        const IntakeResult result = RecordIntake(project, {}, false, &window_).Take(record);
        EXPECT_TRUE(clicks.AllDone());
        ASSERT_EQ(project.FileCount(), c.files);
        EXPECT_EQ(result.places.size(), c.files);
        if (c.files > 0) {
            EXPECT_EQ(project.layers[0].files[0].readOnly, c.readOnly);
        }
    }
}

}  // namespace
}  // namespace orvex
