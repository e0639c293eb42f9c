#include "las/page/LasPageOptions.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "las/page/LasPageControls.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::FakeRegistry;

TEST(LasThinning, ReadsTheFirstTenCharactersAsALeadingInteger) {
    const struct {
        const wchar_t* text;
        std::optional<std::int32_t> expected;
    } cases[] = {
        {L"2", 2},
        {L"16", 16},
        {L" 8", 8},
        {L"+4", 4},
        {L"12abc", 12},
        {L"256", 256},
        {L"257", 256},
        {L"300", 256},
        {L"9999999999", 256},
        {L"00000000165", 16},
        {L"00000000002", std::nullopt},
        {L"1", std::nullopt},
        {L"0", std::nullopt},
        {L"", std::nullopt},
        {L"abc", std::nullopt},
        {L"-5", std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ParseThinning(c.text), c.expected)
            << "text: " << std::string(c.text, c.text + wcslen(c.text));
    }
}

/// Keeps the names in the order of writing.
class RecordingStore final : public RegistryStore {
  public:
    std::vector<std::wstring> written;
    FakeRegistry registry;

    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        return std::make_unique<Key>(written, registry.OpenBaseKey(root));
    }

  private:
    class Key final : public RegistryKey {
      public:
        Key(std::vector<std::wstring>& written, std::unique_ptr<RegistryKey> key)
            : written_(written), key_(std::move(key)) {}
        RegistryStatus Query(const std::wstring& name, RegistryType type,
                             std::vector<std::byte>& data) const override {
            return key_->Query(name, type, data);
        }
        RegistryStatus Set(const std::wstring& name, RegistryType type,
                           std::span<const std::byte> data) override {
            written_.push_back(name);
            return key_->Set(name, type, data);
        }
        std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
            return std::make_unique<Key>(written_, key_->OpenSubkey(name));
        }

      private:
        std::vector<std::wstring>& written_;
        std::unique_ptr<RegistryKey> key_;
    };
};

TEST(LasPageOptionsStore, WritesEveryStoredOptionInOrderAndReadsItBack) {
    RecordingStore registry;
    const OptionStore store(registry);
    LasPageOptions options;
    options.readWrite = true;
    options.footprintsOnly = true;
    options.append = false;
    options.thinning = 99;
    options.detailColumns = true;
    options.convertExistingQvr = true;
    options.pyramidType = LasPyramidType::Qvr;
    options.backup = LasBackupOption::BackupAndCompress;
    options.reCreateOrvexLas = true;
    SaveLasPageOptions(store, options);
    EXPECT_THAT(registry.written,
                ElementsAre(L"optAddLASOpenSetting", L"optAddLASLoadSetting", L"optAddLASAppend",
                            L"optAddLASThinning", L"optAddLASDetailCols", L"optConvertExistingQVRToOrvexLAS",
                            L"optPyramidType", L"optOrvexLasBackupOption", L"optReCreateOrvexLASOption"));
    EXPECT_EQ(ReadLasPageOptions(store), options);
}

TEST(LasPageOptionsStore, ValuesThatMakeNoSenseGiveThoseOfAFreshMachine) {
    FakeRegistry registry;
    const OptionStore store(registry);
    EXPECT_EQ(ReadLasPageOptions(store), LasPageOptions{});

    store.Put<std::int32_t>(opt2PyramidType, 7);
    store.Put<std::int32_t>(opt2OrvexLASBackupOption, -1);
    EXPECT_EQ(ReadLasPageOptions(store), LasPageOptions{});

    store.Put<std::int32_t>(opt2AddLASThinning, 5000);
    EXPECT_EQ(ReadLasPageOptions(store).thinning, 256);
    store.Put<std::int32_t>(opt2AddLASThinning, -3);
    EXPECT_EQ(ReadLasPageOptions(store).thinning, 2);
}

TEST(LasPageOptionsStore, TheOlderSwitchDecidesUntilATypeIsStored) {
    FakeRegistry registry;
    const OptionStore store(registry);
    store.Put<char>(opt2AddLASPyramid, 0);
    EXPECT_EQ(ReadLasPageOptions(store).pyramidType, LasPyramidType::None);
    store.Put<std::int32_t>(opt2PyramidType, 2);
    EXPECT_EQ(ReadLasPageOptions(store).pyramidType, LasPyramidType::Qvr);
}

TEST(LasPageOptionsStore, AStoreThatCannotBeOpenedIsSilent) {
    FakeRegistry registry;
    registry.denyOpen.insert(RegistryRoot::CurrentUser);
    const OptionStore store(registry);
    SaveLasPageOptions(store, {});
    EXPECT_EQ(ReadLasPageOptions(store), LasPageOptions{});
}

bool Enabled(const LasPageState& state, int id) {
    const auto states = LasControlStates(state);
    const auto found = std::ranges::find(states, id, &ControlState::id);
    return found != states.end() && found->enabled;
}

TEST(LasControls, PyramidOptionsFollowModeAndType) {
    using namespace las_control;
    using enum LasPyramidType;
    const struct {
        bool readWrite;
        bool footprints;
        LasPyramidType type;
        bool pyramids;
        bool orvexLas;
    } cases[] = {
        {false, false, OrvexLas, false, false}, {false, true, OrvexLas, false, false},
        {true, true, OrvexLas, false, false},   {true, false, OrvexLas, true, true},
        {true, false, Qvr, true, false},        {true, false, None, true, false},
    };
    for (const auto& c : cases) {
        LasPageState state;
        state.options.readWrite = c.readWrite;
        state.options.footprintsOnly = c.footprints;
        state.options.pyramidType = c.type;
        for (const int id : {kPyramidOrvexLas, kPyramidQvr, kPyramidNone}) {
            EXPECT_EQ(Enabled(state, id), c.pyramids) << id;
        }
        for (const int id : {kConvertQvr, kReCreate, kOverwrite, kBackup, kBackupCompress}) {
            EXPECT_EQ(Enabled(state, id), c.orvexLas) << id;
        }
        EXPECT_TRUE(Enabled(state, kThinning));
        EXPECT_TRUE(Enabled(state, kReadWrite));
    }
}

TEST(LasControls, RowsSelectionAndWorkDecideTheButtons) {
    using namespace las_control;
    const struct {
        LasPageState state;
        bool add;
        bool remove;
        bool clear;
    } cases[] = {
        {{false, 0, 0, {}}, true, false, false},
        {{false, 3, 0, {}}, true, false, true},
        {{false, 3, 1, {}}, true, true, true},
        {{true, 3, 1, {}}, false, false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Enabled(c.state, kAddFiles), c.add);
        EXPECT_EQ(Enabled(c.state, kAddFolder), c.add);
        EXPECT_EQ(Enabled(c.state, kRemove), c.remove);
        EXPECT_EQ(Enabled(c.state, kClear), c.clear);
        EXPECT_EQ(Enabled(c.state, kRefresh), c.clear);
    }
    LasPageState busy{true, 3, 1, {}};
    busy.options.readWrite = true;
    for (const ControlState& control : LasControlStates(busy)) {
        EXPECT_FALSE(control.enabled) << control.id;
    }
}

}  // namespace
}  // namespace orvex
