// The component's way to the real objects of this host: through the object library, on Windows through COM.
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <tuple>

#include "host/objects/HostClasses.h"
#include "raster/RasterRow.h"
#include "raster/testing/GeoTiff.h"
#include "settings/SystemSettings.h"
#include "settings/ValueFile.h"
#include "settings/testing/FakeHostObjects.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex::host {
namespace {

class HostObjectsTest : public ::testing::Test {
  protected:
    HostData State() const {
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
    /// Expects a setting to be read as `wanted`, whatever the caller has preset.
    void ExpectSetting(const wchar_t* section, const wchar_t* key, SettingValue preset,
                       const SettingValue& wanted) {
        EXPECT_EQ(Settings()->Get(section, key, preset), kHostOk);
        EXPECT_TRUE(preset == wanted) << ToUtf8(key) << " of type " << preset.index();
    }

    /// Asks the raster-information object on a worker thread, as the component does.
    std::int32_t Describe(const std::wstring& path, RasterProperties& properties, std::wstring& reason) {
        std::int32_t result = kHostOk;
        std::thread([&, maker = host_->RasterInformation()] {
            if (const auto object = maker(result)) {
                result = object->Describe(path, properties, reason);
            }
        }).join();
        return result;
    }

    testing::TemporaryFolder folder_;
    std::wstring projectFolder_;
    std::unique_ptr<HostObjects> host_ = MakeHostObjects();
};

TEST_F(HostObjectsTest, ExistWhileTheClassesDo) {
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
    EXPECT_THROW(const SystemSettings settings(*host_), LDataError);
}

TEST_F(HostObjectsTest, SettingsKeepTheirTypesFromRunToRun) {
    const struct {
        const wchar_t* key;
        SettingValue value;
    } cases[] = {
        {L"bool", std::int16_t{-1}},
        {L"number", std::int32_t{-70000}},
        {L"real", 0.1},
        {L"Größe \U0001F600", L"<ORVEX_PROJECT_PATH>\\Größe \U0001F600"},
        {L"odd text", std::wstring(L"a\0b", 3) + static_cast<wchar_t>(0xD800)},
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
        ExpectSetting(L"AddFilesDlg", c.key, L"preset", c.value);
        ExpectSetting(L"AddFilesDlg", c.key, std::monostate(), c.value);
        ExpectSetting(L"Other", c.key, c.value, c.value);
        EXPECT_EQ(Settings()->Set(L"AddFilesDlg", c.key, std::monostate()), kHostOk) << "removes it";
        ExpectSetting(L"AddFilesDlg", c.key, std::monostate(), std::monostate());
    }
}

TEST_F(HostObjectsTest, AnUnusableSettingsFileIsAFailureThatTheComponentLivesWith) {
    const std::filesystem::path file = State().settingsFile;
    std::filesystem::create_directory(file);
    std::filesystem::create_directory(file.native() + std::filesystem::path("-journal").native());
    const HostClasses classes(State());
    SettingValue value = std::int16_t{7};
    EXPECT_EQ(Settings()->Get(L"AddFilesDlg", L"key", value), kHostFail);
    SystemSettings settings(*host_);
    EXPECT_TRUE(settings.GetBool(L"DEMAutoPyramid", true));
    settings.SetBool(L"DEMAutoPyramid", false);
    EXPECT_FALSE(settings.GetBool(L"DEMAutoPyramid", true)) << "kept in memory";
}

TEST_F(HostObjectsTest, TheApplicationKnowsTheProjectAndItsOptions) {
    bool isFailing = false;
    const HostClasses classes(
        {State().settingsFile, [&] { return isFailing ? throw std::runtime_error("no") : projectFolder_; }});
    const auto application = Application();
    const struct {
        const wchar_t *open, *given;
    } cases[] = {{L"", L""}, {L"/projects/a", L"/projects/a/"}, {L"/projects/a/", L"/projects/a/"}};
    for (const auto& c : cases) {
        projectFolder_ = c.open;
        std::wstring folder = L"?";
        EXPECT_EQ(application->GetProjectFolder(folder), kHostOk);
        EXPECT_EQ(std::filesystem::path(folder).generic_wstring(), c.given);
    }
    SettingValue value;
    EXPECT_EQ(application->GetOptionItem(kAcceptKmlOption, value), kHostOk);
    EXPECT_TRUE(value == SettingValue(std::int16_t{-1}));
    EXPECT_EQ(application->GetOptionItem(1, value), kHostOk);
    EXPECT_TRUE(value == SettingValue(std::int16_t{-1})) << "an option that is not set changes nothing";
    isFailing = true;
    std::wstring folder = L"?";
    EXPECT_EQ(application->GetProjectFolder(folder), kHostFail);
    EXPECT_EQ(folder, L"?");
}

// What a host's layer answers, and what reaches the component of it.
TEST_F(HostObjectsTest, TheApplicationGivesTheProjectAndItsLayers) {
    testing::FakeLayer layer;
    layer.fields = {L"PhotoPath"};
    layer.photos = {L"/photos/\u00dc\U0001F4F7.jpg"};
    std::int32_t code = kHostOk;
    std::int32_t result = kHostOk;
    {
        const HostClasses classes(State());
        EXPECT_EQ(Application()->GetProject(result), nullptr);
        EXPECT_EQ(result, kHostNotImplemented) << "a host without photo layers";
    }
    testing::FakeHostObjects fake;
    HostData data = State();
    data.photoFolder = [&] {
        return code == kHostOk ? L"/projects/a/Fotos \u00fc" : throw LDataError(L"no");
    };
    data.openLayer = [&](const std::wstring& path) {
        if (path != L"photos.shp") {
            throw LDataError(L"no layer");
        }
        fake.layers[path] = layer;
        std::unique_ptr<OrvexLayer> opened;
        fake.CreateApplication(result)->GetProject(result)->OpenLayer(path, opened);
        return opened;
    };
    const HostClasses classes(data);
    const auto project = Application()->GetProject(result);  // outlives the application object
    ASSERT_NE(project, nullptr);
    std::wstring folder;
    EXPECT_EQ(project->GetPhotoFolder(folder), kHostOk);
    EXPECT_EQ(folder, L"/projects/a/Fotos \u00fc");
    code = kHostFail;
    EXPECT_EQ(project->GetPhotoFolder(folder), kHostFail);
    EXPECT_EQ(folder, L"/projects/a/Fotos \u00fc") << "a failure changes nothing";

    std::unique_ptr<OrvexLayer> opened;
    EXPECT_EQ(project->OpenLayer(L"other.shp", opened), kHostFail);
    EXPECT_EQ(opened, nullptr);
    for (const std::int32_t answer : {kHostOk, kHostFail}) {
        layer.result = answer;
        ASSERT_EQ(project->OpenLayer(L"photos.shp", opened), kHostOk);
        const bool isOk = answer == kHostOk;
        bool isPhotoLayer = false;
        bool hasField = false;
        bool hasPhoto = false;
        std::int32_t type = 0;
        EXPECT_EQ(opened->IsPhotoLayer(isPhotoLayer), answer);
        EXPECT_EQ(opened->GetGeometryType(type), answer);
        EXPECT_EQ(opened->HasField(L"PhotoPath", hasField), answer);
        EXPECT_EQ(opened->HasPhoto(*layer.photos.begin(), hasPhoto), answer);
        EXPECT_EQ(std::tuple(isPhotoLayer, type, hasField, hasPhoto),
                  std::tuple(isOk, isOk ? kPointZLayer : 0, isOk, isOk));
        EXPECT_EQ(opened->HasField(L"TimeUTC", hasField), answer);
        EXPECT_FALSE(hasField);
    }
}

// On Windows all of it comes in one call, so that a service never gets the token of another one.
TEST_F(HostObjectsTest, TheApplicationGivesTheAccountOfNow) {
    std::int32_t result = kHostOk;
    {
        const HostClasses classes(State());
        EXPECT_EQ(Application()->GetUserAccount(result), nullptr);
        EXPECT_EQ(result, kHostNotImplemented) << "a host without accounts";
    }
    std::optional<CloudAccount> signedIn;
    bool isFailing = false;
    HostData data = State();
    data.account = [&] { return isFailing ? throw LDataError(L"no") : signedIn; };
    const HostClasses classes(data);
    const auto application = Application();
    EXPECT_EQ(application->GetUserAccount(result), nullptr);
    EXPECT_EQ(result, kHostOk) << "nobody is signed in";
    signedIn = {L"J\u00fcrgen \U0001F600", L"https://cloud.example/\u00fc", std::wstring(L"t\0k", 3)};
    const auto account = application->GetUserAccount(result);
    ASSERT_NE(account, nullptr);
    isFailing = true;
    EXPECT_EQ(application->GetUserAccount(result), nullptr);
    EXPECT_EQ(result, kHostFail);
    CloudAccount copied;
    EXPECT_EQ(account->GetUserName(copied.userName), kHostOk);
    EXPECT_EQ(account->GetService(copied.service), kHostOk);
    EXPECT_EQ(account->GetToken(copied.token), kHostOk);
    EXPECT_EQ(std::tie(copied.userName, copied.service, copied.token),
              std::tie(signedIn->userName, signedIn->service, signedIn->token));
}

// Whether the host has the class or the component reads the file by itself, the row is the same.
TEST_F(HostObjectsTest, ARasterIsDescribedWithAllDetails) {
    testing::GeoTiff tiff;
    tiff.bands = 3;
    tiff.options = {"COMPRESS=DEFLATE"};
    tiff.change = [](GDALDatasetH dataset) { GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -1); };
    const std::wstring path = tiff.Write(folder_, L"\u00dcber\U0001F5FA.tif");
    const RasterProperties withoutClass =
        InspectRasterFile(path, RasterUse::Image, host_->RasterInformation()).Properties();
    EXPECT_EQ(withoutClass.projectionCode, 32633);
    ASSERT_EQ(withoutClass.bandDetails->size(), 3U);
    EXPECT_EQ(withoutClass.bandDetails->front().nodata, -1);
    const HostClasses classes(State());
    RasterProperties described;
    std::wstring reason;
    EXPECT_EQ(Describe(path, described, reason), kHostOk) << ToUtf8(reason);
    EXPECT_TRUE(described == withoutClass);

    RasterProperties none;
    EXPECT_EQ(Describe(folder_.Write(L"empty.tif", ""), none, reason), kHostFail);
    EXPECT_NE(reason, L"");
}

}  // namespace
}  // namespace orvex::host
