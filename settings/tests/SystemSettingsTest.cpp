#include "settings/SystemSettings.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "settings/testing/FakeHostObjects.h"
#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex {
namespace {

using testing::FakeHostObjects;

class SystemSettingsTest : public ::testing::Test {
  protected:
    SettingValue& Stored(const std::wstring& key) { return host_.settings[{L"AddFilesDlg", key}]; }

    FakeHostObjects host_;
};

TEST_F(SystemSettingsTest, OnlyMinusOneIsTrue) {
    const SystemSettings settings(host_);
    EXPECT_TRUE(settings.GetBool(L"DEMAutoPyramid", true));
    EXPECT_FALSE(settings.GetBool(L"DEMAutoPyramid", false));
    Stored(L"DEMAutoPyramid") = std::int16_t{-1};
    EXPECT_TRUE(settings.GetBool(L"DEMAutoPyramid", false));
    const SettingValue others[] = {std::int16_t{0}, std::int16_t{1}, std::int32_t{-1}, L"-1"};
    for (const SettingValue& other : others) {
        Stored(L"DEMAutoPyramid") = other;
        EXPECT_FALSE(settings.GetBool(L"DEMAutoPyramid", true)) << other.index();
    }
}

TEST_F(SystemSettingsTest, NumbersComeFromEveryKindThatHoldsOne) {
    struct Case {
        SettingValue stored;
        std::int32_t number;
    };
    constexpr std::int32_t kFallback = 99;
    const Case cases[] = {
        {std::int16_t{16}, 16},
        {std::int32_t{-70000}, -70000},
        {32.0, 32},
        {1e300, kFallback},
        {L"16", 16},
        {L"16 points", kFallback},
        {L"", kFallback},
        {std::monostate(), kFallback},
        {std::numeric_limits<double>::quiet_NaN(), kFallback},
    };
    const SystemSettings settings(host_);
    EXPECT_EQ(settings.GetNumber(L"DEMThinningFactor", kFallback), kFallback);
    for (const Case& c : cases) {
        Stored(L"DEMThinningFactor") = c.stored;
        EXPECT_EQ(settings.GetNumber(L"DEMThinningFactor", kFallback), c.number) << c.stored.index();
    }
}

TEST_F(SystemSettingsTest, FailuresGiveFallbacksAndKeepOldValues) {
    Stored(L"DEMThinningFactor") = std::int16_t{16};
    SystemSettings settings(host_);
    host_.setResult = kHostFail;
    settings.SetInt16(L"DEMThinningFactor", 4);
    EXPECT_EQ(settings.GetNumber(L"DEMThinningFactor", 2), 16);
    host_.getResult = kHostFail;
    EXPECT_EQ(settings.GetNumber(L"DEMThinningFactor", 2), 2);

    host_.createSettingsResult = kHostClassNotRegistered;
    std::string logged;
    const LogRedirection log([&](LogLevel, const std::string& line) { logged += line; });
    EXPECT_THROW(SystemSettings none(host_), LDataError);
    for (const char* part : {"OrvexSystemSettings", "{38E5B774-7F17-48A4-BB8A-CEEA8FE4F258}",
                             "is not registered", "0x80040154", "RegisterHostClass"}) {
        EXPECT_NE(logged.find(part), std::string::npos) << part << " is not in: " << logged;
    }
}

}  // namespace
}  // namespace orvex
