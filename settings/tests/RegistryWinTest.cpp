// The registry as other programs see it: every value is looked at, or put there, by raw calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "settings/OptionCatalogue.h"
#include "settings/OptionStore.h"
#include "settings/testing/PrivateRegistry_win.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::kBaseKeyName;
using testing::RawValue;

HKEY RootOf(std::uint32_t number) {
    return number >> 31 == 1 ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring KeyOf(std::uint32_t number) {
    std::wstring base = kBaseKeyName;
    switch (number >> 24) {
        case 4:
            return base + L"\\LOS";
        case 5:
            return base + L"\\AddFilesDlg";
        default:
            return base;
    }
}

std::vector<std::byte> BytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text.data(), text.size()));
    return {bytes.begin(), bytes.end()};
}

class RegistryWinTest : public ::testing::Test {
  protected:
    testing::PrivateRegistry raw_;
    std::unique_ptr<RegistryStore> registry_ = MakeRegistryStore();
    OptionStore options_{*registry_};
};

TEST_F(RegistryWinTest, EachGroupHasItsKey) {
    const std::string written("\1\2\3\4", 4);
    const std::pair<OrvexOptionItem2, RawValue> cases[] = {
        {opt2AddFilesCurTabIndex, {REG_BINARY, BytesOf(written)}},
        {opt2LOSObserverColor, {REG_DWORD, BytesOf(written)}},
        {opt2ShowGeoWarning, {REG_BINARY, BytesOf("\1")}},
        {opt2ResellerName, {REG_SZ, BytesOf(written)}},
    };
    for (const auto& [item, stored] : cases) {
        EXPECT_EQ(options_.Write(item, written.data(), written.size()), stored.data.size());
        EXPECT_EQ(raw_.Find(RootOf(item), KeyOf(item), FindOption(item)->valueName), stored);
    }
    EXPECT_TRUE(options_.WritePlacement(L"AddFilesDlgA", "placed"));
    EXPECT_EQ(raw_.Find(HKEY_CURRENT_USER, std::wstring(kBaseKeyName) + L"\\Placements", L"AddFilesDlgA"),
              (RawValue{REG_BINARY, BytesOf("placed")}));
}

TEST_F(RegistryWinTest, ValuesOfTypesThatNoItemHasAreNotTheItems) {
    using namespace std::string_literals;
    const std::string sixteen = "\x10\0\0\0"s;  // the default
    const struct {
        const char* what;
        OrvexOptionItem2 item;
        DWORD type;
        std::string stored, expected;
    } cases[] = {
        {"sound", opt2AddLASThinning, REG_DWORD, "\4\0\0\0"s, "\4\0\0\0"s},
        {"other order", opt2AddLASThinning, REG_DWORD_BIG_ENDIAN, "\0\0\0\4"s, sixteen},
        {"64 bits", opt2AddLASThinning, REG_QWORD, "\4\0\0\0\0\0\0\0"s, sixteen},
        {"no type", opt2AddLASThinning, REG_NONE, "\4\0\0\0"s, sixteen},
        {"short", opt2AddLASThinning, REG_DWORD, "\4\0"s, sixteen},
        {"huge", opt2AddLASThinning, REG_DWORD, std::string(3000000, '\4'), sixteen},
        {"unterminated", opt2ResellerName, REG_SZ, "A\0b\0"s, "A\0b\0\0\0"s},
        {"huge text", opt2ResellerName, REG_SZ, std::string(3000000, 'x'), ""},
        {"to be expanded", opt2ResellerName, REG_EXPAND_SZ, "A\0\0\0"s, ""},
        {"several", opt2ResellerName, REG_MULTI_SZ, "A\0\0\0\0\0"s, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        raw_.Put(RootOf(c.item), KeyOf(c.item), FindOption(c.item)->valueName, {c.type, BytesOf(c.stored)});
        std::string buffer(64, '?');
        const std::size_t delivered = options_.Read(c.item, buffer.data(), buffer.size());
        EXPECT_EQ(buffer.substr(0, delivered), c.expected);
        EXPECT_EQ(buffer.substr(delivered), std::string(64 - delivered, '?')) << "touched what follows";
    }
}

TEST_F(RegistryWinTest, AValueThatGrowsWhileItIsReadIsReadWhole) {
    const auto key = registry_->OpenBaseKey(RegistryRoot::CurrentUser);
    const std::string sizes[] = {std::string(1, 's'), std::string(500, 'm'), std::string(9000, 'l')};
    ASSERT_TRUE(key);
    ASSERT_EQ(key->Set(L"growing", RegistryType::Binary, BytesOf(sizes[0])), RegistryStatus::Ok);
    std::atomic<bool> isEnough = false;
    std::thread writer([&] {
        const auto other = registry_->OpenBaseKey(RegistryRoot::CurrentUser);
        for (std::size_t i = 0; !isEnough; ++i) {
            other->Set(L"growing", RegistryType::Binary, BytesOf(sizes[i % 3]));
        }
    });
    int odd = 0;
    for (int i = 0; i < 2000; ++i) {
        std::vector<std::byte> data;
        const RegistryStatus status = key->Query(L"growing", RegistryType::Binary, data);
        const std::string read(reinterpret_cast<const char*>(data.data()), data.size());
        odd += status == RegistryStatus::Ok && std::ranges::find(sizes, read) != std::end(sizes) ? 0 : 1;
    }
    isEnough = true;
    writer.join();
    EXPECT_EQ(odd, 0);
}

TEST_F(RegistryWinTest, AUsersKeyThatCanOnlyBeReadIsRead) {
    EXPECT_TRUE(options_.Put(opt2AddLASThinning, std::int32_t{4}));
    raw_.DenyWrites(HKEY_CURRENT_USER, KeyOf(opt2AddLASThinning));
    EXPECT_EQ(options_.Get(opt2AddLASThinning, std::int32_t{0}), 4);
    EXPECT_FALSE(options_.Put(opt2AddLASThinning, std::int32_t{8}));
    EXPECT_EQ(options_.Get(opt2AddLASThinning, std::int32_t{0}), 4);
    EXPECT_TRUE(options_.Put(opt2LOSObserverHeight, 1.5)) << "another subkey";
}

TEST_F(RegistryWinTest, NoKeyStaysOpen) {
    EXPECT_TRUE(options_.Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_TRUE(options_.Put(opt2NativeWindows, true));
    raw_.DenyWrites(HKEY_LOCAL_MACHINE, kBaseKeyName);
    const std::size_t before = testing::OpenHandles();
    for (std::int32_t i = 0; i < 100; ++i) {
        EXPECT_TRUE(options_.Put(opt2AddLASThinning, i));
        EXPECT_EQ(options_.Get(opt2AddLASThinning, -1), i);
        EXPECT_FALSE(options_.Put(opt2NativeWindows, true));
        EXPECT_TRUE(options_.Get(opt2NativeWindows, false));
        EXPECT_EQ(options_.ReadPlacement(L"absent"), std::nullopt);
    }
    EXPECT_EQ(testing::OpenHandles(), before);
}

}  // namespace
}  // namespace orvex
