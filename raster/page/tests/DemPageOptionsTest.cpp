#include "raster/page/DemPageOptions.h"

#include <gmock/gmock.h>

#include "raster/page/RasterPageOptions.h"
#include "settings/OptionStore.h"
#include "settings/SystemSettings.h"
#include "settings/testing/FakeHostObjects.h"
#include "settings/testing/FakeRegistry.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;

constexpr const wchar_t* kSection = L"AddFilesDlg";

TEST(DemThinning, IsAWholeNumberFrom2To256) {
    const struct {
        const wchar_t* text;
        std::optional<std::int32_t> wanted;
    } cases[] = {{L"1", {}},    {L"0", {}},          {L"", {}},           {L"text", {}},  {L"-3", {}},
                 {L"2", 2},     {L"256", 256},       {L"257", 256},       {L"1000", 256}, {L"16", 16},
                 {L"  16", 16}, {L"0000000003", {}}, {L"999999999", 256}, {L"4.9", 4}};
    for (const auto& c : cases) {
        EXPECT_EQ(ParseDemThinning(c.text), c.wanted) << c.text;
    }
}

class DemSettings : public ::testing::Test {
  protected:
    DemPageOptions Read() { return ReadDemPageOptions(SystemSettings(host)); }
    SettingValue& Stored(const wchar_t* key) { return host.settings[{kSection, key}]; }

    testing::FakeHostObjects host;
};

TEST_F(DemSettings, AFreshMachineHasEverythingSet) {
    const DemPageOptions options = Read();
    EXPECT_TRUE(options.detailColumns && options.append && options.ignoreCrs && options.pyramid &&
                options.readWrite);
    EXPECT_EQ(options.lasFolder, L"<ORVEX_PROJECT_PATH>\\DEM Import");
    EXPECT_EQ(options.thinning, 16);
    EXPECT_EQ(options.lasVersion, 5);
    EXPECT_EQ(options.pointFormat, 0);
}

TEST_F(DemSettings, AreStoredInTheFormsThatTheHostKnows) {
    DemPageOptions options;
    options.append = options.pyramid = false;
    options.lasFolder = L"D:\\out";
    options.thinning = 256;
    SystemSettings settings(host);
    SaveDemPageOptions(settings, options);
    EXPECT_EQ(host.settings.count({kSection, L"DEMThinningFactor"}), 0U);
    SaveDemThinning(settings, options.thinning);
    const std::pair<const wchar_t*, SettingValue> stored[] = {
        {L"DEMShowAdvCols", std::int16_t{-1}},
        {L"DEMAppendToLayers", std::int16_t{0}},
        {L"DEMIgnoreCRS", std::int16_t{-1}},
        {L"DEMAutoPyramid", std::int16_t{0}},
        {L"DEMOpenReadWriteSetting", std::int16_t{-1}},
        {L"DEMLASFolder", std::wstring(L"D:\\out")},
        {L"DEMThinningFactor", std::int16_t{256}},
    };
    EXPECT_EQ(host.settings.size(), std::size(stored));
    for (const auto& [key, value] : stored) {
        EXPECT_EQ(Stored(key), value) << key;
    }
    EXPECT_EQ(Read(), options);
}

TEST_F(DemSettings, OddStoredValuesReadAsFarAsTheyMakeSense) {
    Stored(L"DEMOpenReadWriteSetting") = std::int16_t{1};  // only -1 is true
    Stored(L"DEMAppendToLayers") = std::int32_t{-1};
    Stored(L"DEMLASFolder") = std::wstring();
    const std::pair<SettingValue, std::int32_t> factors[] = {{std::wstring(L"32"), 32},
                                                             {std::int32_t{8}, 8},
                                                             {std::int16_t{1}, 2},
                                                             {std::int16_t{300}, 256},
                                                             {4.0, 4},
                                                             {std::wstring(L"x"), 16}};
    for (const auto& [value, wanted] : factors) {
        Stored(L"DEMThinningFactor") = value;
        EXPECT_EQ(Read().thinning, wanted);
    }
    EXPECT_FALSE(Read().readWrite);
    EXPECT_FALSE(Read().append);
    EXPECT_EQ(Read().lasFolder, L"") << "an empty text is a text";
}

TEST(RasterOptions, AreOneByteEach) {
    testing::FakeRegistry registry;
    const OptionStore store(registry);
    EXPECT_EQ(ReadRasterPageOptions(store), RasterPageOptions());
    const RasterPageOptions options{.append = false, .pyramid = true, .detailColumns = true};
    SaveRasterPageOptions(store, options);
    EXPECT_EQ(ReadRasterPageOptions(store), options);
    for (const auto& [name, byte] :
         {std::pair(L"optAddRasterAppend", '\0'), std::pair(L"optAddRasterPyramid", '\1'),
          std::pair(L"optAddRasterDetailCols", '\1')}) {
        const auto* value = registry.Find(RegistryRoot::CurrentUser, L"AddFilesDlg", name);
        ASSERT_NE(value, nullptr);
        EXPECT_THAT(value->data, ElementsAre(static_cast<std::byte>(byte)));
    }
}

}  // namespace
}  // namespace orvex
