// The component's way to the host's objects, through the object library, to the real objects of this host.
#include "host/objects/HostClasses.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "settings/SystemSettings.h"
#include "settings/ValueFile.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::host {
namespace {

class HostClassesTest : public ::testing::Test {
  protected:
    HostState State() const {
        return {folder_.Path() / "host.sqlite", [this] { return projectFolder_; }};
    }
    std::unique_ptr<OrvexSystemSettings> Settings() {
        std::int32_t result = kHostOk;
        return host_->CreateSystemSettings(result);
    }
    std::unique_ptr<OrvexApplication> Application() {
        std::int32_t result = kHostOk;
        return host_->CreateApplication(result);
    }

    testing::TemporaryFolder folder_;
    std::wstring projectFolder_;
    std::unique_ptr<HostObjects> host_ = MakeHostObjects();
};

TEST_F(HostClassesTest, ObjectsExistWhileTheClassesDo) {
    std::int32_t result = kHostOk;
    EXPECT_EQ(host_->CreateSystemSettings(result), nullptr);
    EXPECT_EQ(result, kHostClassNotRegistered);
    {
        const HostClasses classes(State());
        EXPECT_NE(host_->CreateSystemSettings(result), nullptr);
        EXPECT_EQ(result, kHostOk);
        EXPECT_NE(host_->CreateApplication(result), nullptr);
    }
    EXPECT_EQ(host_->CreateApplication(result), nullptr);
    EXPECT_EQ(result, kHostClassNotRegistered);
    try {
        const SystemSettings settings(*host_);
        ADD_FAILURE() << "settings without a host";
    } catch (const LDataError& error) {
        EXPECT_EQ(error.Text(), L"Failed to create OrvexSystemSettings object");
    }
}

TEST_F(HostClassesTest, SettingsKeepTheirKindsFromRunToRun) {
    const struct {
        const wchar_t* key;
        SettingValue value;
    } cases[] = {
        {L"bool", std::int16_t{-1}},
        {L"number", std::int32_t{-70000}},
        {L"real", 0.1},
        {L"text", L"<ORVEX_PROJECT_PATH>\\Größe \U0001F600"},
        {L"empty text", L""},
    };
    {
        const HostClasses classes(State());
        for (const auto& c : cases) {
            EXPECT_EQ(Settings()->Set(L"AddFilesDlg", c.key, std::int32_t{1}), kHostOk);
            EXPECT_EQ(Settings()->Set(L"AddFilesDlg", c.key, c.value), kHostOk);
        }
    }
    const HostClasses classes(State());
    for (const auto& c : cases) {
        SettingValue value = L"preset";
        EXPECT_EQ(Settings()->Get(L"AddFilesDlg", c.key, value), kHostOk);
        EXPECT_TRUE(value == c.value) << value.index();
        SettingValue other = L"preset";
        EXPECT_EQ(Settings()->Get(L"Other", c.key, other), kHostOk);
        EXPECT_TRUE(other == SettingValue(L"preset"));
    }
    EXPECT_EQ(Settings()->Set(L"AddFilesDlg", L"text", std::monostate()), kHostOk);
    SettingValue value = L"preset";
    EXPECT_EQ(Settings()->Get(L"AddFilesDlg", L"text", value), kHostOk);
    EXPECT_TRUE(value == SettingValue(L"preset"));
}

TEST_F(HostClassesTest, ValuesThatAreNotTheirKindCountAsNotStored) {
    const HostClasses classes(State());
    ValueFile file(State().settingsFile, ValueFileOwner::User);
    const std::byte three[3]{};
    for (const std::int64_t kind : {-1, 1, 2, 3, 99}) {
        EXPECT_EQ(file.Store(L"AddFilesDlg", L"odd", kind, three), ValueStatus::Ok);
        SettingValue value = std::int16_t{7};
        EXPECT_EQ(Settings()->Get(L"AddFilesDlg", L"odd", value), kHostOk);
        EXPECT_TRUE(value == SettingValue(std::int16_t{7})) << kind;
    }
}

TEST_F(HostClassesTest, AnUnusableSettingsFileIsAFailureThatTheComponentLivesWith) {
    std::filesystem::create_directory(State().settingsFile);
    const HostClasses classes(State());
    SettingValue value = std::int16_t{7};
    EXPECT_EQ(Settings()->Get(L"AddFilesDlg", L"key", value), kHostFail);
    EXPECT_EQ(Settings()->Set(L"AddFilesDlg", L"key", value), kHostFail);
    SystemSettings settings(*host_);
    settings.SetBool(L"DEMAutoPyramid", false);
    EXPECT_TRUE(settings.GetBool(L"DEMAutoPyramid", true));
}

TEST_F(HostClassesTest, TheApplicationKnowsTheProjectAndItsOptions) {
    const HostClasses classes(State());
    const auto application = Application();
    const struct {
        const wchar_t *open, *told;
    } cases[] = {{L"", L""}, {L"/projects/a", L"/projects/a/"}, {L"/projects/a/", L"/projects/a/"}};
    for (const auto& c : cases) {
        projectFolder_ = c.open;
        std::wstring folder = L"?";
        EXPECT_EQ(application->GetProjectFolder(folder), kHostOk);
        EXPECT_EQ(std::filesystem::path(folder).generic_wstring(), c.told);
    }
    SettingValue value;
    EXPECT_EQ(application->GetOptionItem(kAcceptKmlOption, value), kHostOk);
    EXPECT_TRUE(value == SettingValue(std::int16_t{-1}));
    EXPECT_EQ(application->GetOptionItem(1, value), kHostOk);
    EXPECT_TRUE(value == SettingValue(std::int16_t{-1})) << "an option that is not set changes nothing";
}

TEST_F(HostClassesTest, AProviderThatThrowsIsAFailure) {
    const HostClasses classes(
        {State().settingsFile, []() -> std::wstring { throw std::runtime_error("no"); }});
    std::wstring folder = L"?";
    EXPECT_EQ(Application()->GetProjectFolder(folder), kHostFail);
    EXPECT_EQ(folder, L"?");
}

}  // namespace
}  // namespace orvex::host
