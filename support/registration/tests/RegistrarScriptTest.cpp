#include "support/registration/RegistrarScript.h"

#include <gtest/gtest.h>

#include <variant>

#include "support/LDataError.h"

namespace orvex {
namespace {

using Mode = RegistrarKey::Mode;

const RegistrarReplacements kReplacements = {{L"MODULE", L"C:\\it's here\\O.dll"}, {L"EMPTY", L""}};

/// A key and what is in it as one text, to be compared at a glance.
std::wstring Shown(const RegistrarKey& key);

struct DataText {
    std::wstring operator()(const std::wstring& text) const { return L"s:" + text; }
    std::wstring operator()(std::uint32_t number) const { return L"d:" + std::to_wstring(number); }
    std::wstring operator()(const std::vector<std::byte>& bytes) const {
        std::wstring text = L"b:";
        for (const std::byte byte : bytes) {
            text += std::to_wstring(std::to_integer<int>(byte)) + L",";
        }
        return text;
    }
    std::wstring operator()(const std::vector<std::wstring>& texts) const {
        std::wstring text = L"m:";
        for (const std::wstring& one : texts) {
            text += one + L"|";
        }
        return text;
    }
};

std::wstring Shown(const RegistrarKey& key) {
    static constexpr const wchar_t* kModes[] = {L"shared ", L"", L"owned ", L"deleted "};
    std::wstring text = kModes[static_cast<int>(key.mode)] + key.name + L"(";
    for (const RegistrarValue& value : key.values) {
        text += L"[" + value.name + L"=" + std::visit(DataText(), value.data) + L"]";
    }
    for (const RegistrarKey& below : key.keys) {
        text += Shown(below);
    }
    return text + L")";
}

std::wstring Shown(const RegistrarScript& script) {
    static constexpr const wchar_t* kRoots[] = {L"HKCR:", L"HKCU:", L"HKLM:"};
    std::wstring text;
    for (const auto& [root, keys] : script) {
        text += kRoots[static_cast<int>(root)];
        for (const RegistrarKey& key : keys) {
            text += Shown(key);
        }
    }
    return text;
}

TEST(RegistrarScript, SaysWhatGoesWhere) {
    const struct {
        const char* script;
        const wchar_t* shown;
    } cases[] = {
        {"", L""},
        {"HKCR { }\r\nHKCU\n{\n}\thklm { }", L"HKCR:HKCU:HKLM:"},
        {"HKEY_CLASSES_ROOT { } HKEY_CURRENT_USER { } HKEY_LOCAL_MACHINE { }", L"HKCR:HKCU:HKLM:"},
        {"HKCR { NoRemove AppID { ForceRemove {1CD2-A} = s 'Orvex' { } } }",
         L"HKCR:shared AppID(owned {1CD2-A}([=s:Orvex]))"},
        {"HKCU { A { B { } C } D }", L"HKCU:A(B()C())D()"},
        {"HKCU { Delete Old A { val x = s 'y' val 'a b' = d 7 } }", L"HKCU:deleted Old()A([x=s:y][a b=d:7])"},
        {"HKCU { forceremove A = d '0xFFFFFFFF' noremove B = d &H1f delete C }",
         L"HKCU:owned A([=d:4294967295])shared B([=d:31])deleted C()"},
        {"HKCU { A = b '00fF7a' B = b '' C = m 'one\\0two\\0\\0three' }",
         L"HKCU:A([=b:0,255,122,])B([=b:])C([=m:one|two|three|])"},
        {"HKCU { 'Delete' { val 'val' = s '{' } '}' = s '' }", L"HKCU:Delete([val=s:{])}([=s:])"},
        {"HKCU { 'it''s' = s '''' }", L"HKCU:it's([=s:'])"},
        {"HKCU { A = s %MODULE% B = s 'at %MODULE%,%EMPTY%100%%' }",
         L"HKCU:A([=s:C:\\it's here\\O.dll])B([=s:at C:\\it's here\\O.dll,100%])"},
        {"HKCU { Gr\xC3\xB6\xC3\x9F"
         "e = s '\xE2\x82\xAC' }",
         L"HKCU:Größe([=s:€])"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Shown(ParseRegistrarScript(c.script, kReplacements)), c.shown) << c.script;
    }
}

TEST(RegistrarScript, WhatItCannotMeanIsRefusedWithItsLine) {
    std::string deep = "HKCU ";
    for (int i = 0; i < 200; ++i) {
        deep += "{ A ";
    }
    const struct {
        std::string script;
        int line;
        const wchar_t* problem;
    } cases[] = {
        {"HKXX { }", 1, L"no root"},
        {"'HKCR' { }", 1, L"no root"},
        {"HKCR", 1, L"\"{\" is missing before the end"},
        {"HKCR {\n A {\n }\n", 4, L"a name is missing"},
        {"HKCR { } }", 1, L"no root"},
        {"HKCR { = s 'x' }", 1, L"a name is missing"},
        {"HKCR {\n val A s 'x' }", 2, L"\"=\" is missing before \"s\""},
        {"HKCR { A { val = s 'x' } }", 1, L"a name is missing"},
        {"HKCR { val A = s 'x' }", 1, L"a root has no values"},
        {"HKCR { A = x 'x' }", 1, L"no type"},
        {"HKCR { A = 's' 'x' }", 1, L"no type"},
        {"HKCR { A = s", 1, L"a value is missing"},
        {"HKCR { A = d '-1' }", 1, L"no number"},
        {"HKCR { A = d '4294967296' }", 1, L"no number"},
        {"HKCR { A = d '0x' }", 1, L"no number"},
        {"HKCR { A = d '7 ' }", 1, L"no number"},
        {"HKCR { A = b 'ABC' }", 1, L"no hexadecimal"},
        {"HKCR { A = b 'G0' }", 1, L"no hexadecimal"},
        {"HKCR { A = b '-1' }", 1, L"no hexadecimal"},
        {"HKCR { A = s 'x\n' }", 1, L"not closed"},
        {"HKCR { A = s 'x", 1, L"not closed"},
        {"HKCR { A = s 'x'y }", 1, L"no blank"},
        {"HKCR {\n\n A = s '%NOPE%' }", 3, L"%NOPE%"},
        {"HKCR { A = s '50%' }", 1, L"stands alone"},
        {"HKCR { %EMPTY% }", 1, L"replaced by nothing"},
        {"HKCR { '' }", 1, L"a name is missing"},
        {"HKCR { Delete '%EMPTY%' }", 1, L"a name is missing"},
        {"HKCR { A\\B }", 1, L"more than one level"},
        {"HKCR { Delete %MODULE% }", 1, L"more than one level"},
        {"HKCR { ForceRemove CLSID }", 1, L"belongs to the system"},
        {"HKLM { Delete software }", 1, L"belongs to the system"},
        {"HKCU { Software { } }", 1, L"belongs to the system"},
        {deep, 1, L"too deep"},
    };
    for (const auto& c : cases) {
        try {
            const std::wstring shown = Shown(ParseRegistrarScript(c.script, kReplacements));
            ADD_FAILURE() << c.script << " was read as " << testing::PrintToString(shown);
        } catch (const LDataError& error) {
            const std::wstring line = L"line " + std::to_wstring(c.line) + L":";
            EXPECT_NE(error.Text().find(line), std::wstring::npos) << c.script << " " << error.what();
            EXPECT_NE(error.Text().find(c.problem), std::wstring::npos) << c.script << " " << error.what();
        }
    }
}

}  // namespace
}  // namespace orvex
