// The library as a host calls it: real halves of every seam, with settings of the test's own.
#include "orvexcommon/Exports.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLocale>
#include <QMessageBox>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStyle>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cfenv>
#include <clocale>
#include <functional>
#include <map>
#include <memory>
#include <thread>

#include "orvexcommon/HostInterfaces.h"
#include "orvexcommon/orvex.h"
#include "settings/RegistryKey.h"
#include "settings/testing/FakeHostObjects.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

class Exports : public ::testing::Test {
  protected:
    // One folder for all: the log stays open for the life of the process.
    static testing::TemporaryFolder& Folder() {
        static testing::TemporaryFolder folder;
        return folder;
    }
    Exports() {
        qputenv("ORVEX_LOG", QByteArray::fromStdString((Folder().Path() / "log").string()));
        std::int32_t result = kHostOk;
        RegisterHostClass(kApplicationClass, [=, this]() mutable { return host.CreateApplication(result); });
        RegisterHostClass(kSystemSettingsClass,
                          [=, this]() mutable { return host.CreateSystemSettings(result); });
    }
    ~Exports() override {
        RegisterHostClass(kApplicationClass, {});
        RegisterHostClass(kSystemSettingsClass, {});
    }
    // Clicks in the modal windows that come, one after the other.
    void Click(std::vector<std::string> names) {
        clicks = std::move(names);
        timer.start(1);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
            QWidget* window = QApplication::activeModalWidget();
            if (window == nullptr || clicks.empty()) {
                return;
            }
            const std::string name = clicks.front();
            clicks.erase(clicks.begin());
            auto* button = window->findChild<QAbstractButton*>(QString::fromStdString(name));
            ASSERT_NE(button, nullptr) << name;
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        });
    }
    testing::FakeHostObjects host;
    testing::TemporaryFolder settingsFolder;
    PrivateSettings settings{settingsFolder.Path()};
    QTimer timer;
    std::vector<std::string> clicks;
};

TEST_F(Exports, TheLidarAnswerIsKeptBetweenCalls) {
    Click({"readWrite", "ok", "readWrite", "doNotAskAgain", "ok"});
    EXPECT_EQ(GetAddingLidarChoice(true), ADD_LIDAR_READ_WRITE);
    EXPECT_EQ(GetAddingLidarChoice(true), ADD_LIDAR_READ_WRITE) << "asked again";
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(GetAddingLidarChoice(false), ADD_LIDAR_READ_WRITE) << "not asked any more";
}

TEST_F(Exports, TheDialogHasItsPagesAndCancelLeavesTheRecordAlone) {
    AddFilesParams params;
    params.showRasterTab = params.showFeatureTab = params.showDemTab = params.showPhotoTab = true;
    params.lasThinning = 77;
    QTimer::singleShot(0, qApp, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        const struct {
            const char *name, *className;
            StringId caption;
        } pages[] = {{"page363", "orvex::AddLASFilesPP", text::kLasTab},
                     {"page385", "orvex::AddRasterFilesPP", text::kRasterTab},
                     {"page390", "orvex::AddFeatureFilesPP", text::kFeatureTab},
                     {"page403", "orvex::AddDEMFilesPP", text::kDemTab},
                     {"page406", "orvex::AddPhotoFilesPP", text::kPhotoTab}};
        const auto* tabs = dialog->findChild<QTabBar*>();
        ASSERT_EQ(tabs->count(), 5);
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(tabs->tabText(i).remove(QLatin1Char('&')).toStdWString(), Text(pages[i].caption));
            const auto* page = dialog->findChild<QWidget*>(QLatin1String(pages[i].name));
            ASSERT_NE(page, nullptr) << pages[i].name;
            EXPECT_STREQ(page->metaObject()->className(), pages[i].className);
        }
    });
    Click({"cancel"});
    EXPECT_FALSE(ShowAddFilesDialog(&params));
    EXPECT_EQ(params.lasThinning, 77);
}

TEST_F(Exports, AHostThatDestroysTheOwnerCancelsWhateverIsOpen) {
    using Call = std::function<bool(const QWidget& owner)>;
    const Call choose = [](const QWidget&) { return GetAddingLidarChoice(true) == ADD_LIDAR_READ_ONLY; };
    const Call tell = [](const QWidget& owner) {
        bool stop = false;
        MessageRegardingAddingLidar(reinterpret_cast<HWND>(owner.winId()), L"Caption", true, true, true, true,
                                    true, true, true, stop);
        return stop;
    };
    const testing::TemporaryFolder empty;
    AddFilesParams params;
    const Call add = [&](const QWidget&) { return !ShowAddFilesDialog(&params); };
    const Call addNothing = [&](const QWidget&) {
        params.initialPaths = {empty.Name({})};  // of which the user is told
        return !ShowAddFilesDialog(&params);
    };
    const testing::TemporaryFolder folder;
    const Call addOne = [&](const QWidget&) {
        params.initialPaths = {folder.Write(L"damaged.las", "LASF")};
        return !ShowAddFilesDialog(&params);
    };
    struct Case {
        const char* topmost;  ///< class of the window that is open when the owner goes
        Call call;
        int rows = 0;  ///< in its list
    };
    for (const Case& c :
         {Case{"orvex::CAddingLidarDlg", choose}, Case{"QMessageBox", tell}, Case{"orvex::AddFilesDlg", add},
          Case{"QMessageBox", addNothing}, Case{"orvex::AddFilesDlg", addOne, 1}}) {
        auto owner = std::make_unique<QWidget>();
        owner->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(owner.get()));
        QTimer destroying;
        QObject::connect(&destroying, &QTimer::timeout, &destroying, [&] {
            const QWidget* window = QApplication::activeModalWidget();
            const auto* list = window != nullptr ? window->findChild<QTableView*>() : nullptr;
            const int rows = list != nullptr ? list->model()->rowCount() : 0;
            if (window != nullptr && window->isVisible() && window->inherits(c.topmost) && rows == c.rows) {
                destroying.stop();
                owner.reset();
            }
        });
        destroying.start(0);
        EXPECT_TRUE(c.call(*owner)) << c.topmost;
        EXPECT_EQ(owner, nullptr) << c.topmost;
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << c.topmost;
    }
}

/// What a host would notice if it changed, by name.
std::map<std::string, QString> ProcessFacts() {
    const auto list = [](char** texts) {
        const CPLStringList options(texts);
        QStringList lines;
        for (int i = 0; i < options.size(); ++i) {
            lines.append(QString::fromUtf8(options[i]));
        }
        return lines.filter(QRegularExpression(QStringLiteral("^(?!GDAL_DATA=|GDAL_DRIVER_PATH=)")))
            .join('\n');
    };
    return {{"current folder", QDir::currentPath()},
            {"C locale", QString::fromUtf8(std::setlocale(LC_ALL, nullptr))},
            {"environment", QProcessEnvironment::systemEnvironment().toStringList().join('\n')},
            {"rounding", QString::number(std::fegetround())},
            {"GDAL's options", list(CPLGetConfigOptions())},
            {"GDAL's options of the thread", list(CPLGetThreadLocalConfigOptions())},
            {"GDAL's cache", QString::number(GDALGetCacheMax64())},
            {"Qt's locale", QLocale().name()},
            {"Qt's folders", QCoreApplication::libraryPaths().join('\n')},
            {"names", QCoreApplication::organizationName() + '/' + QCoreApplication::applicationName()},
            {"quits on last window closed", QString::number(QGuiApplication::quitOnLastWindowClosed())},
            {"font", QApplication::font().toString()},
            {"style", QApplication::style()->name() + '/' + qApp->styleSheet()},
            {"text colour", QApplication::palette().color(QPalette::Text).name()},
            {"cursor", QString::number(QGuiApplication::overrideCursor() != nullptr)},
            {"windows", QString::number(QApplication::topLevelWidgets().size())}};
}

void HandleGdalError(CPLErr, CPLErrorNum, const char*) {}
void HandleQtMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

TEST_F(Exports, TheProcessOfAHostWithQtIsAsItWas) {
    GDALSetCacheMax64(12345678);
    CPLSetErrorHandler(HandleGdalError);
    const QtMessageHandler usual = qInstallMessageHandler(HandleQtMessage);
    const std::map<std::string, QString> before = ProcessFacts();
    const testing::TemporaryFolder folder;
    AddFilesParams params;
    params.showRasterTab = params.showFeatureTab = params.showDemTab = params.showPhotoTab =
        params.showCloudTab = true;
    params.initialTab = 1;
    params.initialPaths = {
        folder.Write(L"heights.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n7\n")};
    QTimer closing;
    QObject::connect(&closing, &QTimer::timeout, &closing, [] {
        const QWidget* dialog = QApplication::activeModalWidget();
        const QList<QTableView*> lists =
            dialog != nullptr ? dialog->findChildren<QTableView*>() : QList<QTableView*>();
        const bool isRead =
            std::ranges::any_of(lists, [](const QTableView* list) { return list->model()->rowCount() == 1; });
        if (isRead) {
            dialog->findChild<QPushButton*>(QStringLiteral("cancel"))->click();
        }
    });
    closing.start(0);
    EXPECT_FALSE(ShowAddFilesDialog(&params));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_THAT(ProcessFacts(), ::testing::ContainerEq(before));
    EXPECT_EQ(qInstallMessageHandler(usual), &HandleQtMessage);
    EXPECT_EQ(CPLSetErrorHandler(nullptr), &HandleGdalError);
}

void Append(void* lines, std::int32_t level, const char* line) {
    static_cast<std::string*>(lines)->append(std::to_string(level)).append(" ").append(line).append("\n");
}

TEST_F(Exports, WrongCallsDoNothing) {
    std::string lines;
    EXPECT_EQ(orvex_set_log(Append, &lines), ORVEX_OK);
    EXPECT_FALSE(ShowAddFilesDialog(nullptr));
    EXPECT_THAT(lines, ::testing::MatchesRegex("1 ShowAddFilesDialog: .*\n"));
    EXPECT_EQ(orvex_set_log(nullptr, nullptr), ORVEX_OK);
    bool stop = true;
    MessageRegardingAddingLidar(nullptr, L"Caption", false, false, false, false, false, false, false, stop);
    EXPECT_TRUE(stop) << "only ever set";
    AddFilesParams params;
    std::thread([&] { EXPECT_FALSE(ShowAddFilesDialog(&params)); }).join();
    EXPECT_NE(testing::ReadFile(Folder().Name(L"log")).find("ShowAddFilesDialog"), std::string::npos);
}

}  // namespace
}  // namespace orvex
