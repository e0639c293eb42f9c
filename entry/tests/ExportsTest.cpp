// The library as a host calls it: real halves of every seam, with settings of the test's own.
#include "orvexcommon/Exports.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <thread>

#include "orvexcommon/HostInterfaces.h"
#include "settings/RegistryKey.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

class Application final : public OrvexApplication {
  public:
    std::int32_t GetProjectFolder(std::wstring&) override { return kHostOk; }
    std::int32_t GetOptionItem(std::int32_t, SettingValue&) override { return kHostOk; }
};

class NoSettings final : public OrvexSystemSettings {
  public:
    std::int32_t Get(const std::wstring&, const std::wstring&, SettingValue&) override { return kHostOk; }
    std::int32_t Set(const std::wstring&, const std::wstring&, const SettingValue&) override {
        return kHostOk;
    }
};

class Exports : public ::testing::Test {
  protected:
    // One folder for all: the log stays open for the life of the process.
    static testing::TemporaryFolder& Folder() {
        static testing::TemporaryFolder folder;
        return folder;
    }
    Exports() {
        qputenv("ORVEX_LOG", QByteArray::fromStdString((Folder().Path() / "log").string()));
        RegisterHostClass(kApplicationClass, [] { return std::make_unique<Application>(); });
        RegisterHostClass(kSystemSettingsClass, [] { return std::make_unique<NoSettings>(); });
    }
    ~Exports() override {
        RegisterHostClass(kApplicationClass, {});
        RegisterHostClass(kSystemSettingsClass, {});
    }
    // Clicks in the modal windows that come, one after the other.
    void Click(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            clicks.emplace_back(name);
        }
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

TEST_F(Exports, StopIsOnlyEverSet) {
    bool stop = true;
    MessageRegardingAddingLidar(nullptr, L"Caption", false, false, false, false, false, false, false, stop);
    EXPECT_TRUE(stop);
    stop = false;
    Click({"ok"});
    MessageRegardingAddingLidar(nullptr, L"Caption", false, false, false, false, false, true, true, stop);
    EXPECT_TRUE(stop);
    EXPECT_TRUE(clicks.empty());
}

TEST_F(Exports, TheDialogHasTheLasPageAndCancelLeavesTheRecordAlone) {
    AddFilesParams params;
    params.showCloudTab = true;  // a kind that has no page yet has no tab
    params.lasThinning = 77;
    QTimer::singleShot(0, qApp, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        EXPECT_NE(dialog->findChild<QWidget*>(QStringLiteral("page363")), nullptr);
        EXPECT_EQ(dialog->findChild<QTabBar*>()->count(), 1);
    });
    Click({"cancel"});
    EXPECT_FALSE(ShowAddFilesDialog(&params));
    EXPECT_EQ(params.lasThinning, 77);
    EXPECT_TRUE(params.lasFiles.empty());
}

TEST_F(Exports, WrongCallsDoNothing) {
    EXPECT_FALSE(ShowAddFilesDialog(nullptr));
    AddFilesParams params;
    std::thread([&] { EXPECT_FALSE(ShowAddFilesDialog(&params)); }).join();
    EXPECT_NE(testing::ReadFile(Folder().Name(L"log")).find("ShowAddFilesDialog"), std::string::npos);
}

}  // namespace
}  // namespace orvex
