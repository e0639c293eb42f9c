// The library in a host that has no QApplication: Qt comes and goes with each call.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QtGlobal>
#include <clocale>
#include <filesystem>
#include <thread>

#include "entry/tests/DialogScript.h"
#include "orvexcommon/Exports.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::DialogScript;

// False when nobody can have been told.
/// Whether the user saw the message, for which a script has begun.
bool IsTold() {
    bool stop = false;
    MessageRegardingAddingLidar(nullptr, L"Caption", false, false, false, false, false, true, true, stop);
    EXPECT_TRUE(stop) << "the findings say so, whether or not the user can be told";
    return DialogScript::Left() == 0;
}

bool TellThatNothingCanBeAdded() {
    DialogScript::Begin({"click ok"});
    const bool isTold = IsTold();
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    return isTold;
}

TEST(HostWithoutQt, QtComesAndGoesWithEachCall) {
    for (int call = 0; call < 100; ++call) {
        ASSERT_TRUE(TellThatNothingCanBeAdded()) << call;
    }
    std::thread([] {
        EXPECT_TRUE(TellThatNothingCanBeAdded());
        EXPECT_TRUE(TellThatNothingCanBeAdded());
    }).join();
    EXPECT_TRUE(TellThatNothingCanBeAdded());
}

TEST(HostWithoutQt, AMessageAfterAMessageIsShown) {
    DialogScript::Begin({"click ok", "click ok", "click ok"});
    bool stop = false;
    MessageRegardingAddingLidar(nullptr, L"Caption", true, true, false, true, true, true, false, stop);
    EXPECT_EQ(DialogScript::Left(), 0U) << "the first window was the last one for a moment";
    EXPECT_FALSE(stop);
}

void LogOfTheHost(QtMsgType, const QMessageLogContext&, const QString&) {}

TEST(HostWithoutQt, TheProcessIsAsItWas) {
    const std::filesystem::path folder = std::filesystem::current_path();
    std::setlocale(LC_ALL, "C");
    qInstallMessageHandler(LogOfTheHost);
    const testing::TemporaryFolder elsewhere;
    const QStringList environment = QProcessEnvironment::systemEnvironment().toStringList();
    DialogScript::Begin({"click ok"}, [&] {
        std::filesystem::current_path(elsewhere.Path());
        return true;
    });
    EXPECT_TRUE(IsTold());
    EXPECT_EQ(std::filesystem::current_path(), folder);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(qInstallMessageHandler(nullptr), &LogOfTheHost);
    EXPECT_EQ(QProcessEnvironment::systemEnvironment().toStringList(), environment);
}

TEST(HostWithoutQt, WhatCannotBeShownIsRefused) {
    EXPECT_FALSE(ShowAddFilesDialog(nullptr));
    DialogScript::Begin({"click ok"});
    const QByteArray platform = qgetenv("ORVEX_QT_PLATFORM");
    const testing::TemporaryFolder plugins;
    for (const wchar_t* name : {L"platforms/libqdamaged.so", L"platforms/qdamaged.dll"}) {
        plugins.Write(name, "not a library");
    }
    QCoreApplication::addLibraryPath(QString::fromStdString(plugins.Path().string()));
    for (const char* unusable : {"nowhere", "damaged", "nowhere;damaged"}) {
        qputenv("ORVEX_QT_PLATFORM", unusable);
        EXPECT_FALSE(IsTold()) << unusable << ": Qt would have ended the process";
    }
    qputenv("ORVEX_QT_PLATFORM", "nowhere;damaged;" + platform);
    EXPECT_TRUE(TellThatNothingCanBeAdded()) << "the one that can be used is";
    qputenv("ORVEX_QT_PLATFORM", platform);
    EXPECT_EQ(QCoreApplication::instance(), nullptr);

    DialogScript::Begin({"click ok"});
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QCoreApplication withoutWindows(count, arguments);
    EXPECT_FALSE(IsTold());
}

}  // namespace
}  // namespace orvex
