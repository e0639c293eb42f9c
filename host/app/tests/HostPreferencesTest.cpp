#include "host/app/HostPreferences.h"

#include <gtest/gtest.h>

#include "support/QtText.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(HostPreferences, RemembersThroughItsFile) {
    const testing::TemporaryFolder folder;
    const QString path = ToQString(folder.Name(L"sub/host.json"));
    {
        HostPreferences preferences(path);
        preferences.dark = true;
        preferences.windowGeometry = QByteArray("\x00\xFF\x10", 3);
        for (int i = 0; i < 12; ++i) {
            preferences.AddRecentProject(QString("/Projekt \u00E4 %1").arg(i));
        }
        preferences.AddRecentProject(QString("/Projekt \u00E4 5"));
        preferences.RemoveRecentProject(QString("/Projekt \u00E4 9"));
        preferences.Save();
    }
    const HostPreferences preferences(path);
    EXPECT_TRUE(preferences.dark);
    EXPECT_EQ(preferences.windowGeometry, QByteArray("\x00\xFF\x10", 3));
    ASSERT_EQ(preferences.RecentProjects().size(), 9);
    EXPECT_EQ(preferences.RecentProjects()[0], QString("/Projekt \u00E4 5"));
    EXPECT_EQ(preferences.RecentProjects()[1], QString("/Projekt \u00E4 11"));
}

TEST(HostPreferences, ADamagedFileGivesTheDefaults) {
    const testing::TemporaryFolder folder;
    for (const char* content : {"", "{\"recentProjects\": 7, \"windowGeometry\": []", "[1, 2]", "\xFF\xFE"}) {
        const HostPreferences preferences(ToQString(folder.Write(L"host.json", content)));
        EXPECT_TRUE(preferences.RecentProjects().isEmpty());
        EXPECT_FALSE(preferences.dark);
    }
}

}  // namespace
}  // namespace orvex
