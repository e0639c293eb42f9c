// What every store behind RegistryKey must do; run on the fake and on the platform's own alike.
#include <gtest/gtest.h>

#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"
#include "settings/testing/PlatformStore.h"

namespace orvex {
namespace {

constexpr RegistryRoot kUser = RegistryRoot::CurrentUser;
constexpr RegistryRoot kMachine = RegistryRoot::LocalMachine;

/// The fake, as the contract sees it.
class FakeHalf {
  public:
    RegistryStore& Store() { return fake_; }
    void Reopen() {}
    void DenyMachineWrites() { fake_.denyWrite.insert(kMachine); }

  private:
    testing::FakeRegistry fake_;
};

template <typename Half>
class RegistryContract : public ::testing::Test {
  protected:
    std::unique_ptr<RegistryKey> Base(RegistryRoot root = kUser) {
        auto key = half_.Store().OpenBaseKey(root);
        EXPECT_TRUE(key);
        return key;
    }
    static std::span<const std::byte> Bytes(std::string_view text) {
        return std::as_bytes(std::span(text.data(), text.size()));
    }
    /// The stored bytes as text, or the status as "#2".
    static std::string Get(const RegistryKey& key, const std::wstring& name, RegistryType type) {
        std::vector<std::byte> data{std::byte{'?'}};
        const RegistryStatus status = key.Query(name, type, data);
        std::string text(reinterpret_cast<const char*>(data.data()), data.size());
        if (status != RegistryStatus::Ok) {
            EXPECT_EQ(text, "?") << "touched without a value";
            return "#" + std::to_string(static_cast<int>(status));
        }
        return text;
    }

    Half half_;
};

using Halves = ::testing::Types<FakeHalf, testing::PlatformStore>;
TYPED_TEST_SUITE(RegistryContract, Halves);

TYPED_TEST(RegistryContract, KeepsValuesWithTheirTypesAndSizes) {
    struct Case {
        const wchar_t* name;
        RegistryType type;
        std::string data;
    };
    const Case cases[] = {
        {L"optBool", RegistryType::Binary, {"\1", 1}},
        {L"optDouble", RegistryType::Binary, {"\0\0\0\0\0\0\xF0\x3F", 8}},
        {L"optDword", RegistryType::Dword, {"\x10\0\0\0", 4}},
        {L"optText", RegistryType::String, {"T\0e\0\0\0", 6}},
        {L"optOddText", RegistryType::String, {"T\0e\0x", 5}},
        {L"optEmpty", RegistryType::Binary, ""},
        {L"optEmptyText", RegistryType::String, ""},
        {L"größe ‰ 'quoted\"", RegistryType::Binary, std::string(100000, '\xFE')},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(this->Get(*this->Base(), c.name, c.type), "#1");
        EXPECT_EQ(this->Base()->Set(c.name, c.type, this->Bytes(c.data)), RegistryStatus::Ok);
    }
    this->half_.Reopen();
    for (const Case& c : cases) {
        EXPECT_EQ(this->Get(*this->Base(), c.name, c.type), c.data);
        for (const RegistryType other : {RegistryType::String, RegistryType::Binary, RegistryType::Dword}) {
            EXPECT_EQ(this->Get(*this->Base(), c.name, other) == "#2", other != c.type);
        }
    }
}

TYPED_TEST(RegistryContract, StoresExactlyTheBytesThatItIsGivenUpToALimit) {
    // A zero behind the bytes is none of them, even for a text that needs one.
    const std::string_view memory("a\0b\0\0\0c\0", 8);
    EXPECT_EQ(this->Base()->Set(L"text", RegistryType::String, this->Bytes(memory.substr(0, 4))),
              RegistryStatus::Ok);
    EXPECT_EQ(this->Get(*this->Base(), L"text", RegistryType::String), memory.substr(0, 4));

    const std::string longest(kLongestRegistryValue, 'x');
    EXPECT_EQ(this->Base()->Set(L"name", RegistryType::Binary, this->Bytes(longest)), RegistryStatus::Ok);
    EXPECT_EQ(this->Base()->Set(L"name", RegistryType::Binary, this->Bytes(longest + "x")),
              RegistryStatus::NoAccess);
    EXPECT_TRUE(this->Get(*this->Base(), L"name", RegistryType::Binary) == longest);
}

TYPED_TEST(RegistryContract, NamesIgnoreLetterCaseAndNewValuesReplaceOldOnes) {
    const auto key = this->Base()->OpenSubkey(L"AddFilesDlg");
    ASSERT_TRUE(key);
    EXPECT_EQ(key->Set(L"optOrvexLasBackupOption", RegistryType::Dword, this->Bytes("long")),
              RegistryStatus::Ok);
    EXPECT_EQ(key->Set(L"optOrvexLASBackupOption", RegistryType::Binary, this->Bytes("b")),
              RegistryStatus::Ok);
    const auto again = this->Base()->OpenSubkey(L"ADDFILESDLG");
    ASSERT_TRUE(again);
    EXPECT_EQ(this->Get(*again, L"optOrvexLasBackupOption", RegistryType::Binary), "b");
    EXPECT_EQ(this->Get(*again, L"optOrvexLasBackupOption", RegistryType::Dword), "#2");
}

TYPED_TEST(RegistryContract, KeysAndRootsAreApart) {
    const auto base = this->Base();
    const auto los = base->OpenSubkey(L"LOS");
    const auto placements = base->OpenSubkey(L"Placements");
    ASSERT_TRUE(los && placements);
    EXPECT_EQ(base->Set(L"name", RegistryType::Binary, this->Bytes("base")), RegistryStatus::Ok);
    EXPECT_EQ(los->Set(L"name", RegistryType::Binary, this->Bytes("los")), RegistryStatus::Ok);
    EXPECT_EQ(this->Get(*base, L"name", RegistryType::Binary), "base");
    EXPECT_EQ(this->Get(*los, L"name", RegistryType::Binary), "los");
    EXPECT_EQ(this->Get(*placements, L"name", RegistryType::Binary), "#1");
    EXPECT_EQ(this->Get(*this->Base(kMachine), L"name", RegistryType::Binary), "#1");
}

TYPED_TEST(RegistryContract, AMachineStoreThatCanOnlyBeReadRefusesAndKeeps) {
    EXPECT_EQ(this->Base(kMachine)->Set(L"name", RegistryType::Binary, this->Bytes("old")),
              RegistryStatus::Ok);
    this->half_.DenyMachineWrites();
    const auto key = this->Base(kMachine);
    ASSERT_TRUE(key);
    EXPECT_EQ(key->Set(L"name", RegistryType::Binary, this->Bytes("new")), RegistryStatus::NoAccess);
    EXPECT_EQ(key->Set(L"other", RegistryType::Binary, this->Bytes("new")), RegistryStatus::NoAccess);
    EXPECT_EQ(this->Get(*key, L"name", RegistryType::Binary), "old");
    EXPECT_EQ(this->Get(*key, L"other", RegistryType::Binary), "#1");
}

TYPED_TEST(RegistryContract, CarriesTheOptionStore) {
    const OptionStore options(this->half_.Store());
    EXPECT_EQ(options.Get(opt2AddLASThinning, std::int32_t{1}), 16);
    EXPECT_EQ(options.Get(opt2PyramidType, std::int32_t{1}), 1);
    EXPECT_TRUE(options.Put(opt2AddLASThinning, std::int32_t{4}));
    EXPECT_TRUE(options.Put(opt2AddFilesCurTabIndex, std::int32_t{3}));
    EXPECT_TRUE(options.Put(opt2LOSObserverHeight, 1.75));
    EXPECT_TRUE(options.WritePlacement(L"AddFilesDlgA", "placed"));
    EXPECT_EQ(options.Get(opt2MaxManagerPoints, std::int32_t{7}), 0);

    this->half_.Reopen();
    const OptionStore again(this->half_.Store());
    EXPECT_EQ(again.Get(opt2AddLASThinning, std::int32_t{1}), 4);
    EXPECT_EQ(again.Get(opt2AddFilesCurTabIndex, std::int32_t{0}), 3);
    EXPECT_EQ(again.Get(opt2LOSObserverHeight, 0.0), 1.75);
    EXPECT_EQ(again.ReadPlacement(L"AddFilesDlgA"), "placed");
}

}  // namespace
}  // namespace orvex
