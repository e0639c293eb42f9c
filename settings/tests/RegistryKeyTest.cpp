// The platform's own store behind RegistryKey.
#include "settings/RegistryKey.h"

#include <gtest/gtest.h>

#include "settings/testing/PlatformStore.h"

namespace orvex {
namespace {

constexpr RegistryRoot kUser = RegistryRoot::CurrentUser;
constexpr RegistryRoot kMachine = RegistryRoot::LocalMachine;
constexpr RegistryType kBinary = RegistryType::Binary;

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

/// The stored bytes as text, or the status as "#2".
std::string Get(const RegistryKey& key, const std::wstring& name, RegistryType type = kBinary) {
    std::vector<std::byte> data{std::byte{'?'}};
    const RegistryStatus status = key.Query(name, type, data);
    std::string text(reinterpret_cast<const char*>(data.data()), data.size());
    if (status != RegistryStatus::Ok) {
        EXPECT_EQ(text, "?") << "touched without a value";
        return "#" + std::to_string(static_cast<int>(status));
    }
    return text;
}

class RegistryKeyTest : public ::testing::Test {
  protected:
    std::unique_ptr<RegistryKey> Base(RegistryRoot root = kUser) { return store_->OpenBaseKey(root); }

    testing::Guard place_ = testing::UseEmptyStore();
    std::unique_ptr<RegistryStore> store_ = MakeRegistryStore();
};

TEST_F(RegistryKeyTest, KeepsValuesWithTheirTypesAndSizes) {
    struct Case {
        const wchar_t* name;
        RegistryType type;
        std::string data;
    };
    const Case cases[] = {
        {L"optDouble", kBinary, {"\0\0\0\0\0\0\xF0\x3F", 8}},
        {L"optDword", RegistryType::Dword, {"\x10\0\0\0", 4}},
        {L"optText", RegistryType::String, {"T\0e\0\0\0", 6}},
        {L"optOddText", RegistryType::String, {"T\0e\0x", 5}},
        {L"optEmpty", kBinary, ""},
        {L"optEmptyText", RegistryType::String, ""},
        {L"größe ‰ 'quoted\"", kBinary, std::string(100000, '\xFE')},
        {L"longest", kBinary, std::string(kLongestRegistryValue, 'x')},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Get(*Base(), c.name, c.type), "#1");
        EXPECT_EQ(Base()->Set(c.name, c.type, Bytes(c.data)), RegistryStatus::Ok);
    }
    EXPECT_EQ(Base()->Set(L"longest", kBinary, Bytes(cases[7].data + "x")), RegistryStatus::NoAccess);
    // A zero behind the bytes is none of them, even for a text that needs one.
    const std::string_view memory("a\0b\0\0\0c\0", 8);
    EXPECT_EQ(Base()->Set(L"part", RegistryType::String, Bytes(memory.substr(0, 4))), RegistryStatus::Ok);

    store_ = MakeRegistryStore();  // what another process finds
    EXPECT_EQ(Get(*Base(), L"part", RegistryType::String), memory.substr(0, 4));
    for (const Case& c : cases) {
        EXPECT_TRUE(Get(*Base(), c.name, c.type) == c.data) << c.name;
        for (const RegistryType other : {RegistryType::String, kBinary, RegistryType::Dword}) {
            EXPECT_EQ(Get(*Base(), c.name, other) == "#2", other != c.type);
        }
    }
}

TEST_F(RegistryKeyTest, NamesIgnoreLetterCaseAndNewValuesReplaceOldOnes) {
    const auto key = Base()->OpenSubkey(L"AddFilesDlg");
    ASSERT_TRUE(key);
    EXPECT_EQ(key->Set(L"optOrvexLasBackupOption", RegistryType::Dword, Bytes("long")), RegistryStatus::Ok);
    EXPECT_EQ(key->Set(L"optOrvexLASBackupOption", kBinary, Bytes("b")), RegistryStatus::Ok);
    const auto again = Base()->OpenSubkey(L"ADDFILESDLG");
    ASSERT_TRUE(again);
    EXPECT_EQ(Get(*again, L"optOrvexLasBackupOption"), "b");
    EXPECT_EQ(Get(*again, L"optOrvexLasBackupOption", RegistryType::Dword), "#2");
    for (const auto& other : {Base(), Base()->OpenSubkey(L"LOS"), Base(kMachine)}) {
        EXPECT_EQ(Get(*other, L"optOrvexLasBackupOption"), "#1");
    }
}

TEST_F(RegistryKeyTest, AMachineStoreThatCanOnlyBeReadRefusesAndKeeps) {
    EXPECT_EQ(Base(kMachine)->Set(L"name", kBinary, Bytes("old")), RegistryStatus::Ok);
    const testing::Guard denied = testing::DenyMachineWrites();
    const auto key = Base(kMachine);
    ASSERT_TRUE(key);
    EXPECT_EQ(key->Set(L"name", kBinary, Bytes("new")), RegistryStatus::NoAccess);
    EXPECT_EQ(key->Set(L"other", kBinary, Bytes("new")), RegistryStatus::NoAccess);
    EXPECT_EQ(Get(*key, L"name"), "old");
    EXPECT_EQ(Get(*key, L"other"), "#1");
}

}  // namespace
}  // namespace orvex
