#include "support/registration/Registrar_win.h"

#include <gtest/gtest.h>

#include <system_error>

#include "support/registration/testing/RegistrySandbox_win.h"

namespace orvex {
namespace {

using testing::RegistrySandbox;

class RegistrarWinTest : public ::testing::Test {
  protected:
    static RegistryPlace At(const std::wstring& path) { return {HKEY_CURRENT_USER, path}; }
    static RegistrarScript Script(const char* text) { return ParseRegistrarScript(text, {}); }
    static void Apply(const char* text) {
        RegistryJournal journal;
        ApplyScript(Script(text), RegistrationScope::Machine, journal);
        journal.Keep();
    }
    static void Revert(const char* text) {
        RegistryJournal journal;
        RevertScript(Script(text), RegistrationScope::Machine, journal);
        journal.Keep();
    }
    /// With the zero at its end.
    template <std::size_t size>
    static std::vector<BYTE> BytesOf(const wchar_t (&text)[size]) {
        const auto* bytes = reinterpret_cast<const BYTE*>(text);
        return {bytes, bytes + sizeof(text)};
    }

    RegistrySandbox sandbox_;
};

constexpr const char* kScript =
    "HKCU { NoRemove Software { "
    " Plain = s 'default' { Below { val n = d 5 } }"
    " ForceRemove Owned = s '' { val b = b '0102' val m = m 'a\\0b' }"
    " NoRemove Shared = s 'mine' { val Run = s 'x' Below } } }";

TEST_F(RegistrarWinTest, ValuesAreStoredWithTheirTypes) {
    Apply(kScript);
    const struct {
        const wchar_t *key, *name;
        RegistryData data;
    } cases[] = {
        {L"Software\\Plain", L"", {REG_SZ, BytesOf(L"default")}},
        {L"Software\\Plain\\Below", L"n", {REG_DWORD, {5, 0, 0, 0}}},
        {L"Software\\Owned", L"", {REG_SZ, {0, 0}}},
        {L"Software\\Owned", L"b", {REG_BINARY, {1, 2}}},
        {L"Software\\Owned", L"m", {REG_MULTI_SZ, BytesOf(L"a\0b\0")}},
        {L"Software\\Shared", L"Run", {REG_SZ, BytesOf(L"x")}},
    };
    for (const auto& c : cases) {
        const auto data = ReadRegistryValue(At(c.key), c.name);
        ASSERT_TRUE(data.has_value()) << c.key << " " << c.name;
        EXPECT_TRUE(*data == c.data) << c.key << " " << c.name << " has type " << data->type;
    }
}

TEST_F(RegistrarWinTest, RevertingTakesTheScriptsOwnAndNothingElse) {
    CreateRegistryKey(At(L"Software\\Shared"));
    WriteRegistryValue(At(L"Software\\Shared"), L"other's", {REG_SZ, {}});
    const RegistryImage before = RegistrySandbox::All();
    Revert(kScript);
    EXPECT_TRUE(RegistrySandbox::All() == before) << "nothing was there";
    Apply(kScript);
    Apply(kScript);
    Revert(kScript);
    RemoveRegistryValue(At(L"Software\\Shared"), L"");  // shared keys keep their default value
    EXPECT_TRUE(RegistrySandbox::All() == before);

    Apply(kScript);
    WriteRegistryValue(At(L"Software\\Plain\\Below"), L"other's", {REG_SZ, {}});
    CreateRegistryKey(At(L"Software\\Owned\\Below"));
    Revert(kScript);
    const auto left = ReadRegistry(At(L"Software\\Plain"));
    ASSERT_TRUE(left.has_value()) << "something of others was in it";
    EXPECT_TRUE(left->values.empty());
    EXPECT_EQ(left->keys.at(0).values.size(), 1U);
    EXPECT_FALSE(ReadRegistry(At(L"Software\\Owned")).has_value());
}

TEST_F(RegistrarWinTest, WhatAKeyOfItsOwnHeldIsGoneWhenItIsWritten) {
    CreateRegistryKey(At(L"Software\\Owned"));
    CreateRegistryKey(At(L"Software\\Owned\\Old"));
    WriteRegistryValue(At(L"Software\\Owned"), L"old", {REG_SZ, {}});
    CreateRegistryKey(At(L"Software\\Deleted"));
    Apply(kScript);
    Apply("HKCU { NoRemove Software { Delete Deleted Delete Never } }");
    EXPECT_FALSE(ReadRegistry(At(L"Software\\Owned\\Old")).has_value());
    EXPECT_FALSE(ReadRegistryValue(At(L"Software\\Owned"), L"old").has_value());
    EXPECT_FALSE(ReadRegistry(At(L"Software\\Deleted")).has_value());
}

TEST_F(RegistrarWinTest, AFailureHalfWayLeavesAllAsItWas) {
    Apply(kScript);
    WriteRegistryValue(At(L"Software\\Owned"), L"b", {REG_SZ, BytesOf(L"changed")});
    CreateRegistryKey(At(L"Software\\Deleted"));
    CreateRegistryKey(At(L"Software\\Deleted\\Below"));
    RegistrySandbox::CreateVolatile(At(L"Software\\Volatile"));
    const RegistryImage before = RegistrySandbox::All();
    try {
        RegistryJournal journal;
        ApplyScript(Script(kScript), RegistrationScope::Machine, journal);
        EXPECT_FALSE(RegistrySandbox::All() == before);
        ApplyScript(
            Script("HKCU { NoRemove Software { New = s 'x' { Below } Delete Deleted Plain = s 'other' "
                   "NoRemove Volatile { Fails } } }"),
            RegistrationScope::Machine, journal);
        ADD_FAILURE() << "a lasting key below a volatile one";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ERROR_CHILD_MUST_BE_VOLATILE);
    }
    EXPECT_TRUE(RegistrySandbox::All() == before);
}

}  // namespace
}  // namespace orvex
