// The registry as other programs see it: every value is looked at, or put there, by raw calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include "settings/OptionStore.h"
#include "settings/testing/PrivateRegistry_win.h"

namespace orvex {
namespace {

using testing::kBaseKeyName;
using testing::RawValue;

struct StoredItem {
    std::uint32_t number;
    const wchar_t* name;
    DWORD type;
    std::size_t size;  ///< 0: as long as what is written
};

// Written out once more, since hosts in the field read and write exactly this. The tab index is an integer of
// the binary type, and "Las" in the backup option is spelled so.
constexpr StoredItem kItems[] = {
    // clang-format off
    {1, L"optShowPyramidDlg", REG_BINARY, 1},
    {2, L"optShowGeoWarning", REG_BINARY, 1},
    {3, L"optShowTimedWarning", REG_BINARY, 1},
    {4, L"optShowRptDisclaimer", REG_BINARY, 1},
    {5, L"optShowExceptions", REG_BINARY, 1},
    {6, L"optDoEventLogging", REG_BINARY, 1},
    {7, L"optShowProfileBox", REG_BINARY, 1},
    {8, L"optShowViewerBox", REG_BINARY, 1},
    {9, L"optShowViewerEye", REG_BINARY, 1},
    {10, L"optShowProfileCursor", REG_BINARY, 1},
    {11, L"optShowEditWarning", REG_BINARY, 1},
    {12, L"optShowAddDataWarning", REG_BINARY, 1},
    {13, L"optShowSelFilterWarning", REG_BINARY, 1},
    {14, L"optShowEditHelpTip", REG_BINARY, 1},
    {15, L"optEditHelpTipShown", REG_BINARY, 1},
    {16, L"optShowPBEditHelpTip", REG_BINARY, 1},
    {17, L"optPBEditHelpTipShown", REG_BINARY, 1},
    {18, L"optPointDensity", REG_BINARY, 8},
    {19, L"optThinExtentWidth", REG_DWORD, 4},
    {20, L"optThinExtentHeight", REG_DWORD, 4},
    {21, L"optShowFullResWarning", REG_BINARY, 1},
    {22, L"optFullResWarningShown", REG_BINARY, 1},
    {23, L"optMapJumpAmount", REG_BINARY, 8},
    {24, L"optUseExplorerDialog", REG_BINARY, 1},
    {25, L"optShowAddAllValuesInfo", REG_BINARY, 1},
    {32, L"optZLockInterval", REG_BINARY, 8},
    {33, L"optShowProfileCntrLine", REG_BINARY, 1},
    {34, L"optAutoCommitProfileEditStr", REG_BINARY, 1},
    {35, L"optProfileBkGrdColor", REG_DWORD, 4},
    {36, L"optViewerBkGrdColor", REG_DWORD, 4},
    {37, L"optMapBkGrdColor", REG_DWORD, 4},
    {38, L"optShowAddReadWriteDlg", REG_BINARY, 1},
    {39, L"optGetScanAngleFromFilename", REG_BINARY, 1},
    {40, L"optShowToeGridSizeWarning", REG_BINARY, 1},
    {41, L"optShowOrvexLASOverwriteWarning", REG_BINARY, 1},
    {0x04000001, L"optLOSObserverHeight", REG_BINARY, 8},
    {0x04000002, L"optLOSTargetHeight", REG_BINARY, 8},
    {0x04000003, L"optLOSRelative", REG_BINARY, 1},
    {0x04000004, L"optLOSObserverColor", REG_DWORD, 4},
    {0x04000005, L"optLOSTargetColor", REG_DWORD, 4},
    {0x04000006, L"optLOSRotateObs", REG_BINARY, 1},
    {0x04000007, L"optLOSAngleInc", REG_BINARY, 8},
    {0x04000008, L"optLOSObstructColor", REG_DWORD, 4},
    {0x05000009, L"optAddLASOpenSetting", REG_DWORD, 4},
    {0x0500000A, L"optAddLASLoadSetting", REG_DWORD, 4},
    {0x0500000B, L"optAddLASAppend", REG_BINARY, 1},
    {0x0500000C, L"optAddLASPyramid", REG_BINARY, 1},
    {0x0500000D, L"optAddLASThinning", REG_DWORD, 4},
    {0x0500000E, L"optAddLASDetailCols", REG_BINARY, 1},
    {0x0500000F, L"optAddRasterAppend", REG_BINARY, 1},
    {0x05000010, L"optAddRasterPyramid", REG_BINARY, 1},
    {0x05000011, L"optAddRasterDetailCols", REG_BINARY, 1},
    {0x05000012, L"optAddFilesCurTabIndex", REG_BINARY, 4},
    {0x05000013, L"optConvertExistingQVRToOrvexLAS", REG_BINARY, 1},
    {0x05000014, L"optPyramidType", REG_DWORD, 4},
    {0x05000015, L"optOrvexLasBackupOption", REG_DWORD, 4},
    {0x05000016, L"optReCreateOrvexLASOption", REG_BINARY, 1},
    {0x81000000, L"optResellerName", REG_SZ, 0},
    {0x81000001, L"optResellerPhone", REG_SZ, 0},
    {0x81000002, L"optResellerWeb", REG_SZ, 0},
    {0x81000003, L"optResellerEmail", REG_SZ, 0},
    {0x81000005, L"optNativeWindows", REG_BINARY, 1},
    {0x81000006, L"optMaxManagerPoints", REG_DWORD, 4},
    // clang-format on
};

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

/// Values of the handle table, which Wine does not count.
int OpenHandles() {
    int open = 0;
    for (std::uintptr_t value = 4; value < 0x4000; value += 4) {
        DWORD flags = 0;
        open += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE ? 1 : 0;
    }
    return open;
}

class RegistryWinTest : public ::testing::Test {
  protected:
    testing::PrivateRegistry raw_;
    std::unique_ptr<RegistryStore> registry_ = MakeRegistryStore();
    OptionStore options_{*registry_};
};

TEST_F(RegistryWinTest, EveryItemIsStoredInItsPlaceWithItsNameTypeAndSize) {
    const std::string written("\1\2\3\4\5\6\7\0\0\0", 10);
    for (const StoredItem& item : kItems) {
        SCOPED_TRACE(item.number);
        const std::size_t size = item.size == 0 ? written.size() : item.size;
        EXPECT_EQ(options_.Write(static_cast<OrvexOptionItem2>(item.number), written.data(), written.size()),
                  size);
        const auto stored = raw_.Find(RootOf(item.number), KeyOf(item.number), item.name);
        ASSERT_TRUE(stored);
        EXPECT_EQ(stored->type, item.type);
        EXPECT_EQ(stored->data, BytesOf(written.substr(0, size)));
    }
    const std::wstring base = kBaseKeyName;
    using Counts = std::pair<DWORD, DWORD>;  // values, subkeys
    EXPECT_EQ(raw_.Count(HKEY_CURRENT_USER, base), Counts(35, 2));
    EXPECT_EQ(raw_.Count(HKEY_CURRENT_USER, base + L"\\LOS"), Counts(8, 0));
    EXPECT_EQ(raw_.Count(HKEY_CURRENT_USER, base + L"\\AddFilesDlg"), Counts(14, 0));
    EXPECT_EQ(raw_.Count(HKEY_LOCAL_MACHINE, base), Counts(6, 0));
}

TEST_F(RegistryWinTest, PlacementsAreBinaryValuesBesideTheOptions) {
    EXPECT_TRUE(options_.WritePlacement(L"AddFilesDlgA", "placed"));
    const auto stored =
        raw_.Find(HKEY_CURRENT_USER, std::wstring(kBaseKeyName) + L"\\Placements", L"AddFilesDlgA");
    EXPECT_EQ(stored, (RawValue{REG_BINARY, BytesOf("placed")}));
}

TEST_F(RegistryWinTest, WhatOtherProgramsStoredIsReadAsFarAsItIsTheItems) {
    using namespace std::string_literals;
    const auto thinning = opt2AddLASThinning;  // a DWORD, 16 by default
    const auto warning = opt2ShowGeoWarning;   // one byte, true by default
    const auto density = opt2PointDensity;     // eight bytes, no default
    const auto text = opt2ResellerName;
    const std::string sixteen = "\x10\0\0\0"s;
    const struct {
        const char* what;
        OrvexOptionItem2 item;
        const wchar_t* name;
        DWORD type;
        std::string stored, expected;
    } cases[] = {
        {"sound", thinning, L"optAddLASThinning", REG_DWORD, "\4\0\0\0"s, "\4\0\0\0"s},
        {"binary", thinning, L"optAddLASThinning", REG_BINARY, "\4\0\0\0"s, sixteen},
        {"text", thinning, L"optAddLASThinning", REG_SZ, "4\0\0\0"s, sixteen},
        {"other order", thinning, L"optAddLASThinning", REG_DWORD_BIG_ENDIAN, "\0\0\0\4"s, sixteen},
        {"64 bits", thinning, L"optAddLASThinning", REG_QWORD, "\4\0\0\0\0\0\0\0"s, sixteen},
        {"no type", thinning, L"optAddLASThinning", REG_NONE, "\4\0\0\0"s, sixteen},
        {"short", thinning, L"optAddLASThinning", REG_DWORD, "\4\0"s, sixteen},
        {"long", thinning, L"optAddLASThinning", REG_DWORD, "\4\0\0\0\0"s, sixteen},
        {"empty", thinning, L"optAddLASThinning", REG_DWORD, "", sixteen},
        {"huge", thinning, L"optAddLASThinning", REG_DWORD, std::string(3000000, '\4'), sixteen},
        {"sound", warning, L"optShowGeoWarning", REG_BINARY, "\0"s, "\0"s},
        {"DWORD", warning, L"optShowGeoWarning", REG_DWORD, "\0\0\0\0"s, "\1"s},
        {"two bytes", warning, L"optShowGeoWarning", REG_BINARY, "\0\0"s, "\1"s},
        {"empty", warning, L"optShowGeoWarning", REG_BINARY, "", "\1"s},
        {"seven bytes", density, L"optPointDensity", REG_BINARY, "1234567", ""},
        {"terminated", text, L"optResellerName", REG_SZ, "A\0b\0\0\0"s, "A\0b\0\0\0"s},
        {"unterminated", text, L"optResellerName", REG_SZ, "A\0b\0"s, "A\0b\0\0\0"s},
        {"odd, unterminated", text, L"optResellerName", REG_SZ, "A\0b\0c"s, "A\0b\0\0\0"s},
        {"odd, terminated", text, L"optResellerName", REG_SZ, "A\0\0\0c"s, "A\0\0\0"s},
        {"one byte", text, L"optResellerName", REG_SZ, "A", ""},
        {"empty text", text, L"optResellerName", REG_SZ, "\0\0"s, "\0\0"s},
        {"nothing", text, L"optResellerName", REG_SZ, "", ""},
        {"longer than the buffer", text, L"optResellerName", REG_SZ, std::string(200, 'x'), ""},
        {"huge", text, L"optResellerName", REG_SZ, std::string(3000000, 'x'), ""},
        {"to be expanded", text, L"optResellerName", REG_EXPAND_SZ, "A\0\0\0"s, ""},
        {"several", text, L"optResellerName", REG_MULTI_SZ, "A\0\0\0\0\0"s, ""},
        {"binary", text, L"optResellerName", REG_BINARY, "A\0\0\0"s, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.item << ", " << c.what);
        raw_.Put(RootOf(c.item), KeyOf(c.item), c.name, {c.type, BytesOf(c.stored)});
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

TEST_F(RegistryWinTest, MachineOptionsWithoutRightsAreReadAndNotWritten) {
    EXPECT_TRUE(options_.Put(opt2MaxManagerPoints, std::int32_t{1000000}));
    raw_.DenyWrites(HKEY_LOCAL_MACHINE, kBaseKeyName);
    EXPECT_EQ(options_.Get(opt2MaxManagerPoints, std::int32_t{0}), 1000000);
    const std::int32_t five = 5;
    EXPECT_EQ(options_.Write(opt2MaxManagerPoints, &five, sizeof(five)), 0U);
    EXPECT_EQ(options_.Write(opt2ResellerName, u"x", 4), 0U);
    EXPECT_EQ(options_.Get(opt2MaxManagerPoints, std::int32_t{0}), 1000000);
    EXPECT_EQ(raw_.Count(HKEY_LOCAL_MACHINE, kBaseKeyName)->first, 1U);
}

TEST_F(RegistryWinTest, NoKeyStaysOpen) {
    EXPECT_TRUE(options_.Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_TRUE(options_.Put(opt2NativeWindows, true));
    raw_.DenyWrites(HKEY_LOCAL_MACHINE, kBaseKeyName);
    const int before = OpenHandles();
    for (std::int32_t i = 0; i < 1000; ++i) {
        EXPECT_TRUE(options_.Put(opt2AddLASThinning, i));
        EXPECT_EQ(options_.Get(opt2AddLASThinning, -1), i);
        EXPECT_FALSE(options_.Put(opt2NativeWindows, true));
        EXPECT_TRUE(options_.Get(opt2NativeWindows, false));
        EXPECT_EQ(options_.ReadPlacement(L"absent"), std::nullopt);
    }
    EXPECT_EQ(OpenHandles(), before);
}

}  // namespace
}  // namespace orvex
