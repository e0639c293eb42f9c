// A host that sees the component through the C++17 wrapper only, and is compiled as C++17.
#include <gtest/gtest.h>

#include <QByteArray>
#include <map>
#include <memory>

#include "entry/tests/DialogScript.h"
#include "orvexcommon/orvex.hpp"

namespace orvex {
/// Settings that nobody else has, while it lives.
std::shared_ptr<void> PrivateSettingsOfTest();
}  // namespace orvex

namespace {

static_assert(__cplusplus < 202002L);

using orvex::testing::DialogScript;

constexpr const char* kWithFeatures = R"({"showFeatureTab": true})";

class HostInCpp17 : public ::testing::Test {
    const std::shared_ptr<void> settings_ = orvex::PrivateSettingsOfTest();
};

struct MemoryHost {
    orvexcommon::Host Functions() {
        orvexcommon::Host host;
        host.getSetting = [this](const std::string& section, const std::string& key) {
            const auto found = settings.find(section + '/' + key);
            return found == settings.end() ? std::nullopt : std::optional<std::string>(found->second);
        };
        host.setSetting = [this](const std::string& section, const std::string& key,
                                 const std::string& json) { settings[section + '/' + key] = json; };
        host.projectFolder = [] { return std::string(); };
        host.log = [this](std::int32_t level, const std::string& line) {
            warnings += level == ORVEX_LOG_WARNING ? line + '\n' : std::string();
        };
        return host;
    }

    std::map<std::string, std::string> settings;
    std::string warnings;
};

TEST_F(HostInCpp17, ShowsTheDialogAndAsks) {
    MemoryHost memory;
    const orvexcommon::Host host = memory.Functions();
    DialogScript::Begin({"click ok", "click cancel"});
    EXPECT_EQ(orvexcommon::ShowAddFiles(kWithFeatures, host), std::nullopt);
    EXPECT_EQ(orvexcommon::AskAddingLidar(true, host), std::nullopt);
    EXPECT_EQ(DialogScript::Left(), 0U);
    EXPECT_FALSE(memory.settings.empty());
    EXPECT_EQ(memory.warnings.find("did not store"), std::string::npos) << memory.warnings;
}

TEST_F(HostInCpp17, WhatItsFunctionsThrowStaysInside) {
    MemoryHost memory;
    orvexcommon::Host host = memory.Functions();
    host.setSetting = [](const auto&, const auto&, const auto&) { throw 1; };
    DialogScript::Begin({"click ok", "click ok"});
    EXPECT_EQ(orvexcommon::ShowAddFiles(kWithFeatures, host), std::nullopt);
    EXPECT_NE(memory.warnings.find("did not store"), std::string::npos) << memory.warnings;
    host.projectFolder = []() -> std::string { throw 1; };
    EXPECT_THROW(orvexcommon::ShowAddFiles("{}", host), orvexcommon::Error);
    EXPECT_EQ(DialogScript::Left(), 0U);
}

TEST_F(HostInCpp17, FailuresHaveAStatusAndAReason) {
    try {
        orvexcommon::SetOption("optNothing", "1");
        ADD_FAILURE();
    } catch (const orvexcommon::Error& error) {
        EXPECT_EQ(error.Status(), ORVEX_INVALID);
        EXPECT_NE(std::string(error.what()).find("optNothing"), std::string::npos);
    }
    const QByteArray platform = qgetenv("ORVEX_QT_PLATFORM");
    qputenv("ORVEX_QT_PLATFORM", "nowhere");
    bool stop = false;
    EXPECT_THROW(orvexcommon::ShowLidarMessages(R"({"inProject": true, "cannotBeOpened": true})", stop),
                 orvexcommon::Error);
    EXPECT_TRUE(stop);
    qputenv("ORVEX_QT_PLATFORM", platform);
    EXPECT_NE(orvexcommon::Inspect("none.las").find("\"loadable\": false"), std::string::npos);
    EXPECT_EQ(orvexcommon::GetOption("optPointDensity"), "null");
    EXPECT_FALSE(orvexcommon::Version().empty());
}

}  // namespace
