#include "settings/OptionStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "settings/OptionCatalogue.h"
#include "settings/testing/FakeRegistry.h"

namespace orvex {
namespace {

using testing::FakeRegistry;

constexpr RegistryRoot kUser = RegistryRoot::CurrentUser;
constexpr RegistryRoot kMachine = RegistryRoot::LocalMachine;

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
    std::vector<std::byte> bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

OrvexOptionItem2 Item(std::uint32_t number) {
    return static_cast<OrvexOptionItem2>(number);
}

class OptionStoreTest : public ::testing::Test {
  protected:
    FakeRegistry registry_;
    OptionStore store_{registry_};
};

TEST(OptionCatalogue, IsWholeAndConsistent) {
    EXPECT_EQ(OptionCatalogue().size(), 63U);
    std::map<std::wstring, std::uint32_t> names;
    std::map<std::uint32_t, int> perGroup;
    for (const OptionDescription& option : OptionCatalogue()) {
        SCOPED_TRACE(option.item);
        EXPECT_EQ(FindOption(option.item), &option);
        EXPECT_TRUE(PlaceOfOption(option.item));
        EXPECT_TRUE(names.emplace(ToUpper(option.valueName), option.item).second) << "name used twice";
        EXPECT_LE(option.fallback.size, option.size);
        EXPECT_TRUE(option.type != RegistryType::Dword || option.size == 4);
        EXPECT_EQ(option.type == RegistryType::String, option.size == 0);
        ++perGroup[option.item >> 24];
    }
    EXPECT_EQ(perGroup, (std::map<std::uint32_t, int>{{0x00, 35}, {0x04, 8}, {0x05, 14}, {0x81, 6}}));
}

TEST_F(OptionStoreTest, WritesEachGroupToItsPlaceWithItsNameTypeAndSize) {
    struct Case {
        OrvexOptionItem2 item;
        RegistryRoot root;
        const wchar_t *subkey, *name;
        RegistryType type;
        std::size_t size;
    };
    const Case cases[] = {
        {opt2ShowPyramidDlg, kUser, L"", L"optShowPyramidDlg", RegistryType::Binary, 1},
        {opt2PointDensity, kUser, L"", L"optPointDensity", RegistryType::Binary, 8},
        {opt2MapBkGrdColor, kUser, L"", L"optMapBkGrdColor", RegistryType::Dword, 4},
        {opt2LOSAngleInc, kUser, L"LOS", L"optLOSAngleInc", RegistryType::Binary, 8},
        {opt2AddLASOpenSetting, kUser, L"AddFilesDlg", L"optAddLASOpenSetting", RegistryType::Dword, 4},
        {opt2AddFilesCurTabIndex, kUser, L"AddFilesDlg", L"optAddFilesCurTabIndex", RegistryType::Binary, 4},
        {opt2OrvexLASBackupOption, kUser, L"AddFilesDlg", L"optOrvexLasBackupOption", RegistryType::Dword, 4},
        {opt2ReCreateOrvexLASOption, kUser, L"AddFilesDlg", L"optReCreateOrvexLASOption",
         RegistryType::Binary, 1},
        {opt2NativeWindows, kMachine, L"", L"optNativeWindows", RegistryType::Binary, 1},
        {opt2MaxManagerPoints, kMachine, L"", L"optMaxManagerPoints", RegistryType::Dword, 4},
    };
    const auto data = Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        EXPECT_EQ(store_.Write(c.item, data.data(), c.size - 1), 0U);
        EXPECT_EQ(registry_.Find(c.root, c.subkey, c.name), nullptr);
        EXPECT_EQ(store_.Write(c.item, data.data(), data.size()), c.size);
        const FakeRegistry::Value* value = registry_.Find(c.root, c.subkey, c.name);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(value->type, c.type);
        EXPECT_EQ(value->data, std::vector(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(c.size)));

        auto read = Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        EXPECT_EQ(store_.Read(c.item, read.data(), c.size - 1), 0U);
        EXPECT_EQ(read[0], std::byte{0});
        EXPECT_EQ(store_.Read(c.item, read.data(), read.size()), c.size);
        EXPECT_EQ(std::memcmp(read.data(), data.data(), c.size), 0);
        EXPECT_EQ(read[c.size], std::byte{0});
    }
    EXPECT_EQ(registry_.openKeys, 0);
}

TEST_F(OptionStoreTest, DeliversDefaultsWhenNothingIsStored) {
    struct Case {
        OrvexOptionItem2 item;
        std::size_t size, delivered;
        std::uint32_t value;
    };
    constexpr std::uint32_t kBefore = 0xA1B2C3D4;
    const Case cases[] = {
        {opt2AddLASThinning, 4, 4, 16},
        {opt2AddLASOpenSetting, 4, 4, 0},
        {opt2ShowGeoWarning, 1, 1, 0xA1B2C301},
        {opt2ShowGeoWarning, 4, 1, 0xA1B2C301},  // a larger buffer keeps its other bytes
        {opt2ShowPyramidDlg, 1, 1, 0xA1B2C300},
        {opt2MaxManagerPoints, 4, 1, 0xA1B2C300},  // one byte of the four
        {opt2MaxManagerPoints, 1, 0, kBefore},
        {opt2PyramidType, 4, 0, kBefore},
        {opt2AddRasterAppend, 1, 0, kBefore},
        {opt2ResellerName, 4, 0, kBefore},
        {opt2PointDensity, 4, 0, kBefore},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        std::uint32_t value = kBefore;
        EXPECT_EQ(store_.Read(c.item, &value, c.size), c.delivered);
        EXPECT_EQ(value, c.value);
    }
}

TEST_F(OptionStoreTest, KnowsNoItemOutsideTheCatalogue) {
    std::vector<std::uint32_t> numbers{0,          42,         0x01000001, 0x02000001, 0x03000009,
                                       0x04000000, 0x04000009, 0x05000008, 0x05000017, 0x81000004,
                                       0x81000007, 0x06000001, 0xFFFFFFFF};
    for (std::uint32_t number = 26; number <= 31; ++number) {
        numbers.push_back(number);
    }
    for (const std::uint32_t number : numbers) {
        double value = 7;
        EXPECT_EQ(store_.Read(Item(number), &value, sizeof(value)), 0U) << number;
        EXPECT_EQ(value, 7);
        EXPECT_EQ(store_.Write(Item(number), &value, sizeof(value)), 0U) << number;
    }
}

TEST_F(OptionStoreTest, FallsBackWhenTheStoredValueIsNotTheItems) {
    using Value = FakeRegistry::Value;
    const Value odd[] = {
        {RegistryType::Binary, Bytes({7, 0, 0, 0})},
        {RegistryType::String, Bytes({7, 0, 0, 0})},
        {RegistryType::Dword, Bytes({7})},
        {RegistryType::Dword, Bytes({7, 0, 0, 0, 0})},
        {RegistryType::Dword, {}},
    };
    for (const Value& value : odd) {
        registry_.Put(kUser, L"AddFilesDlg", L"optAddLASThinning", value);
        EXPECT_EQ(store_.Get<std::int32_t>(opt2AddLASThinning, -1), 16);
    }
}

TEST_F(OptionStoreTest, TextsAreAsLongAsStored) {
    const char16_t name[] = u"Tessaly";
    EXPECT_EQ(store_.Write(opt2ResellerName, name, sizeof(name)), sizeof(name));
    char16_t read[16]{};
    EXPECT_EQ(store_.Read(opt2ResellerName, read, sizeof(name) - 1), 0U);
    EXPECT_EQ(read[0], u'\0');
    EXPECT_EQ(store_.Read(opt2ResellerName, read, sizeof(read)), sizeof(name));
    EXPECT_EQ(std::u16string(read), name);
}

TEST_F(OptionStoreTest, TextsEndWithAZeroHoweverTheyAreStored) {
    const struct {
        std::vector<std::byte> stored, delivered;
    } cases[] = {
        {Bytes({'A', 0, 'b', 0, 0, 0}), Bytes({'A', 0, 'b', 0, 0, 0})},
        {Bytes({'A', 0, 'b', 0}), Bytes({'A', 0, 'b', 0, 0, 0})},
        {Bytes({'A', 0, 0, 1}),
         Bytes({'A', 0, 0, 1, 0, 0})},  // neither byte of the last unit alone makes it zero
        {Bytes({'A', 0, 'b'}), Bytes({'A', 0, 0, 0})},
        {Bytes({0, 0}), Bytes({0, 0})},
        {Bytes({'A'}), {}},
        {{}, {}},
    };
    for (const auto& c : cases) {
        registry_.Put(kMachine, L"", L"optResellerName", {RegistryType::String, c.stored});
        std::vector<std::byte> buffer(16, std::byte{7});
        if (!c.delivered.empty()) {
            EXPECT_EQ(store_.Read(opt2ResellerName, buffer.data(), c.delivered.size() - 1), 0U);
        }
        EXPECT_EQ(store_.Read(opt2ResellerName, buffer.data(), buffer.size()), c.delivered.size());
        EXPECT_TRUE(std::equal(c.delivered.begin(), c.delivered.end(), buffer.begin()));
        EXPECT_EQ(buffer[c.delivered.size()], std::byte{7});
    }
}

TEST_F(OptionStoreTest, MachineOptionsOfAnOrdinaryUserCanOnlyBeRead) {
    registry_.Put(kMachine, L"", L"optMaxManagerPoints", {RegistryType::Dword, Bytes({0x40, 0x42, 0x0F, 0})});
    registry_.denyWrite.insert(kMachine);
    EXPECT_EQ(store_.Get<std::int32_t>(opt2MaxManagerPoints, -1), 1000000);
    EXPECT_FALSE(store_.Put(opt2MaxManagerPoints, std::int32_t{5}));
    EXPECT_EQ(store_.Get<std::int32_t>(opt2MaxManagerPoints, -1), 1000000);
}

TEST_F(OptionStoreTest, AKeyThatCannotBeOpenedDeliversNothing) {
    registry_.denyWrite.insert(kUser);  // the subkey does not exist and cannot be made
    EXPECT_EQ(store_.Get<std::int32_t>(opt2AddLASThinning, 5), 5);
    EXPECT_TRUE(store_.Get(opt2ShowGeoWarning, false)) << "the base key can still be read";
    registry_.denyOpen.insert(kUser);
    EXPECT_FALSE(store_.Get(opt2ShowGeoWarning, false));
    EXPECT_FALSE(store_.Put(opt2ShowGeoWarning, true));
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
    EXPECT_FALSE(store_.WritePlacement(L"AddFilesDlgA", "x"));
    EXPECT_EQ(registry_.openKeys, 0);
}

TEST_F(OptionStoreTest, TypedAccessReadsWhatTypedAccessWrote) {
    EXPECT_TRUE(store_.Put(opt2PointDensity, 0.1));
    EXPECT_TRUE(store_.Put(opt2ShowGeoWarning, false));
    EXPECT_TRUE(store_.Put(opt2ShowAddReadWriteDlg, char{2}));
    EXPECT_TRUE(store_.Put(opt2PyramidType, std::int32_t{2}));
    EXPECT_EQ(store_.Get(opt2PointDensity, 0.0), 0.1);
    EXPECT_FALSE(store_.Get(opt2ShowGeoWarning, true));
    EXPECT_EQ(store_.Get(opt2ShowAddReadWriteDlg, char{0}), 2);
    EXPECT_TRUE(store_.Get(opt2ShowAddReadWriteDlg, false));
    EXPECT_EQ(store_.Get(opt2PyramidType, std::int32_t{0}), 2);
    EXPECT_EQ(store_.Get(opt2MaxManagerPoints, std::int32_t{0x12345678}), 0);
    EXPECT_FALSE(store_.Put(opt2PointDensity, std::int32_t{1}));
    EXPECT_EQ(store_.Get(opt2PointDensity, 0.0), 0.1);
}

TEST_F(OptionStoreTest, PlacementsAreBytesUnderAName) {
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
    const std::string bytes("a\0\xFFz", 4);
    EXPECT_TRUE(store_.WritePlacement(L"AddFilesDlgA", bytes));
    EXPECT_TRUE(store_.WritePlacement(L"Other", ""));
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), bytes);
    EXPECT_EQ(store_.ReadPlacement(L"Other"), "");
    const FakeRegistry::Value* value = registry_.Find(kUser, L"Placements", L"AddFilesDlgA");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->type, RegistryType::Binary);
}

}  // namespace
}  // namespace orvex
