// The registry as other programs see it: every value is looked at, or put there, by raw calls.
#include <gtest/gtest.h>
#include <windows.h>

#include "settings/OptionStore.h"
#include "settings/testing/PlatformStore.h"

namespace orvex {
namespace {

using namespace std::string_literals;

class RegistryWinTest : public ::testing::Test {
  protected:
    testing::Guard place_ = testing::UseEmptyStore();
    std::unique_ptr<RegistryStore> registry_ = MakeRegistryStore();
    OptionStore options_{*registry_};
};

TEST_F(RegistryWinTest, EachGroupHasItsKey) {
    const std::string written = "\1\2\0\0"s;
    const struct {
        OrvexOptionItem2 item;
        HKEY root;
        const wchar_t *key, *name;
        DWORD type, size;
    } cases[] = {
        {opt2AddFilesCurTabIndex, HKEY_CURRENT_USER, L"Software\\Tessaly Group\\Orvex\\AddFilesDlg",
         L"optAddFilesCurTabIndex", REG_BINARY, 4},
        {opt2LOSObserverColor, HKEY_CURRENT_USER, L"Software\\Tessaly Group\\Orvex\\LOS",
         L"optLOSObserverColor", REG_DWORD, 4},
        {opt2ShowGeoWarning, HKEY_CURRENT_USER, L"Software\\Tessaly Group\\Orvex", L"optShowGeoWarning",
         REG_BINARY, 1},
        {opt2ResellerName, HKEY_LOCAL_MACHINE, L"Software\\Tessaly Group\\Orvex", L"optResellerName", REG_SZ,
         4},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(options_.Write(c.item, written.data(), written.size()), c.size);
        std::string stored(16, '?');
        DWORD type = REG_NONE, size = 16;
        EXPECT_EQ(RegGetValueW(c.root, c.key, c.name, RRF_RT_ANY, &type, stored.data(), &size),
                  ERROR_SUCCESS);
        EXPECT_EQ(type, c.type);
        EXPECT_EQ(stored.substr(0, size), written.substr(0, c.size));
    }
}

TEST_F(RegistryWinTest, ValuesOfTypesThatNoItemHasAreNotTheItems) {
    const std::string sixteen = "\x10\0\0\0"s;  // the default
    const struct {
        OrvexOptionItem2 item;
        DWORD type;
        std::string stored, expected;
    } cases[] = {
        {opt2AddLASThinning, REG_DWORD, "\4\0\0\0"s, "\4\0\0\0"s},
        {opt2AddLASThinning, REG_DWORD_BIG_ENDIAN, "\0\0\0\4"s, sixteen},
        {opt2AddLASThinning, REG_QWORD, "\4\0\0\0\0\0\0\0"s, sixteen},
        {opt2AddLASThinning, REG_NONE, "\4\0\0\0"s, sixteen},
        {opt2AddLASThinning, REG_DWORD, "\4\0"s, sixteen},
        {opt2AddLASThinning, REG_DWORD, std::string(3000000, '\4'), sixteen},
        {opt2ResellerName, REG_SZ, "A\0b\0"s, "A\0b\0\0\0"s},
        {opt2ResellerName, REG_SZ, std::string(3000000, 'x'), ""},
        {opt2ResellerName, REG_EXPAND_SZ, "A\0\0\0"s, ""},
        {opt2ResellerName, REG_MULTI_SZ, "A\0\0\0\0\0"s, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const bool isText = c.item == opt2ResellerName;
        // The call looks behind an unterminated text for its zero, and must not find one.
        const std::string bytes = c.stored + "\xFF\xFF";
        ASSERT_EQ(RegSetKeyValueW(isText ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
                                  isText ? L"Software\\Tessaly Group\\Orvex"
                                         : L"Software\\Tessaly Group\\Orvex\\AddFilesDlg",
                                  isText ? L"optResellerName" : L"optAddLASThinning", c.type, bytes.data(),
                                  static_cast<DWORD>(c.stored.size())),
                  ERROR_SUCCESS);
        std::string buffer(64, '?');
        const std::size_t delivered = options_.Read(c.item, buffer.data(), buffer.size());
        EXPECT_EQ(buffer.substr(0, delivered), c.expected);
        EXPECT_EQ(buffer.substr(delivered), std::string(64 - delivered, '?')) << "touched what follows";
    }
}

}  // namespace
}  // namespace orvex
