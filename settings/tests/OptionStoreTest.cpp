#include "settings/OptionStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>

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

class OptionStoreTest : public ::testing::Test {
  protected:
    FakeRegistry registry_;
    OptionStore store_{registry_};
};

/// The items of the header that hosts share, by name.
const std::map<std::string, OrvexOptionItem2> kHeaderItems = {
#include "OptionItemNames.inc"
};

using Numbers = std::set<std::uint32_t>;

// Stores in the field hold exactly these names, types and sizes. The tab index is an integer of the binary
// type, and "Las" in the backup option is spelled so.
TEST(OptionCatalogue, HasEveryItemOfTheHeaderWithItsNameTypeAndSize) {
    const Numbers doubles{18, 23, 32, 0x04000001, 0x04000002, 0x04000007};
    const Numbers dwords{19,         20,         35,         36,         37,         0x04000004, 0x04000005,
                         0x04000008, 0x05000009, 0x0500000A, 0x0500000D, 0x05000014, 0x05000015, 0x81000006};
    const Numbers texts{0x81000000, 0x81000001, 0x81000002, 0x81000003};
    constexpr std::uint32_t kTabIndex = 0x05000012;
    EXPECT_EQ(kHeaderItems.size(), 63U);
    EXPECT_EQ(OptionCatalogue().size(), kHeaderItems.size());
    for (const auto& [name, item] : kHeaderItems) {
        SCOPED_TRACE(name);
        const OptionDescription* option = FindOption(item);
        ASSERT_NE(option, nullptr);
        const std::string valueName = "opt" + name.substr(4);
        EXPECT_EQ(ToUtf8(option->valueName),
                  valueName == "optOrvexLASBackupOption" ? "optOrvexLasBackupOption" : valueName);
        EXPECT_EQ(option->type, dwords.contains(item)  ? RegistryType::Dword
                                : texts.contains(item) ? RegistryType::String
                                                       : RegistryType::Binary);
        EXPECT_EQ(option->size, doubles.contains(item)                       ? 8U
                                : dwords.contains(item) || item == kTabIndex ? 4U
                                : texts.contains(item)                       ? 0U
                                                                             : 1U);
    }
}

TEST_F(OptionStoreTest, WritesEachGroupToItsPlace) {
    struct Case {
        OrvexOptionItem2 item;
        RegistryRoot root;
        const wchar_t *subkey, *name;
        std::size_t size;
    };
    const Case cases[] = {
        {opt2PointDensity, kUser, L"", L"optPointDensity", 8},
        {opt2LOSObserverColor, kUser, L"LOS", L"optLOSObserverColor", 4},
        {opt2ReCreateOrvexLASOption, kUser, L"AddFilesDlg", L"optReCreateOrvexLASOption", 1},
        {opt2MaxManagerPoints, kMachine, L"", L"optMaxManagerPoints", 4},
    };
    const auto data = Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        EXPECT_EQ(store_.Write(c.item, data.data(), c.size - 1), 0U);
        EXPECT_EQ(registry_.Find(c.root, c.subkey, c.name), nullptr);
        EXPECT_EQ(store_.Write(c.item, data.data(), data.size()), c.size);
        const FakeRegistry::Value* value = registry_.Find(c.root, c.subkey, c.name);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(value->data, std::vector(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(c.size)));

        auto read = Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        EXPECT_EQ(store_.Read(c.item, read.data(), c.size - 1), 0U);
        EXPECT_EQ(read[0], std::byte{0});
        EXPECT_EQ(store_.Read(c.item, read.data(), read.size()), c.size);
        EXPECT_EQ(std::memcmp(read.data(), data.data(), c.size), 0);
        EXPECT_EQ(read[c.size], std::byte{0});
    }
}

// By the bytes that a fresh machine delivers; items that are not here deliver none. One of four bytes has a
// default of one.
TEST_F(OptionStoreTest, DeliversDefaultsWhenNothingIsStored) {
    using namespace std::string_literals;
    const std::map<std::string, Numbers> defaults{
        {"\1"s, {2,  3,  4,  5,  7,  8,  9,          10,         11,         12,        13,
                 14, 16, 21, 25, 33, 41, 0x04000003, 0x04000006, 0x0500000B, 0x0500000C}},
        {"\0"s, {1, 6, 15, 17, 22, 24, 34, 38, 0x0500000E, 0x81000006}},
        {"\0\0\0\0"s, {0x05000009, 0x0500000A}},
        {"\x10\0\0\0"s, {0x0500000D}},
    };
    Numbers asked{0, 26, 42, 0x01000001, 0x05000017, 0x81000004, 0xFFFFFFFF};  // no items
    for (const auto& [name, item] : kHeaderItems) {
        asked.insert(item);
    }
    std::map<std::string, Numbers> delivered;
    for (const std::uint32_t number : asked) {
        std::string buffer(8, '?');
        const auto item = static_cast<OrvexOptionItem2>(number);
        const std::size_t size = store_.Read(item, buffer.data(), buffer.size());
        EXPECT_EQ(buffer.substr(size), std::string(8 - size, '?')) << number;
        if (size != 0) {
            delivered[buffer.substr(0, size)].insert(number);
        }
    }
    EXPECT_EQ(delivered, defaults);
    char byte = '?';
    EXPECT_EQ(store_.Read(opt2MaxManagerPoints, &byte, 1), 0U) << "the item has four";
    EXPECT_EQ(byte, '?');
}

TEST_F(OptionStoreTest, FallsBackWhenTheStoredValueIsNotTheItems) {
    using Value = FakeRegistry::Value;
    const Value odd[] = {
        {RegistryType::Binary, Bytes({7, 0, 0, 0})},
        {RegistryType::String, Bytes({7, 0, 0, 0})},
        {RegistryType::Dword, Bytes({7})},
        {RegistryType::Dword, Bytes({7, 0, 0, 0, 0})},
    };
    for (const Value& value : odd) {
        registry_.Put(kUser, L"AddFilesDlg", L"optAddLASThinning", value);
        EXPECT_EQ(store_.Get<std::int32_t>(opt2AddLASThinning, -1), 16);
    }
}

TEST_F(OptionStoreTest, TextsAreAsLongAsStoredAndEndWithAZero) {
    EXPECT_EQ(store_.Write(opt2ResellerName, u"Tessaly", 16), 16U);
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

TEST_F(OptionStoreTest, AKeyThatCannotBeOpenedDeliversNothing) {
    registry_.denySubkeys = true;
    EXPECT_EQ(store_.Get<std::int32_t>(opt2AddLASThinning, 5), 5);
    EXPECT_TRUE(store_.Get(opt2ShowGeoWarning, false)) << "the base key can still be read";
    registry_.denyOpen.insert(kUser);
    EXPECT_FALSE(store_.Get(opt2ShowGeoWarning, false));
    EXPECT_FALSE(store_.Put(opt2ShowGeoWarning, true));
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
    EXPECT_FALSE(store_.WritePlacement(L"AddFilesDlgA", "x"));
}

TEST_F(OptionStoreTest, TypedAccessReadsWhatTypedAccessWrote) {
    EXPECT_TRUE(store_.Put(opt2PointDensity, 0.1));
    EXPECT_TRUE(store_.Put(opt2ShowAddReadWriteDlg, char{2}));
    EXPECT_EQ(store_.Get(opt2PointDensity, 0.0), 0.1);
    EXPECT_EQ(store_.Get(opt2ShowAddReadWriteDlg, char{0}), 2);
    EXPECT_TRUE(store_.Get(opt2ShowAddReadWriteDlg, false));
    EXPECT_FALSE(store_.Put(opt2PointDensity, std::int32_t{1}));
    EXPECT_EQ(store_.Get(opt2PointDensity, 0.0), 0.1);
}

TEST_F(OptionStoreTest, PlacementsAreBinaryValuesUnderAName) {
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), std::nullopt);
    const std::string bytes("a\0\xFFz", 4);
    EXPECT_TRUE(store_.WritePlacement(L"AddFilesDlgA", bytes));
    EXPECT_EQ(store_.ReadPlacement(L"AddFilesDlgA"), bytes);
    EXPECT_EQ(registry_.Find(kUser, L"Placements", L"AddFilesDlgA")->type, RegistryType::Binary);
}

}  // namespace
}  // namespace orvex
