// What COM and the registration tools ask of the library, called as they do: by name, after loading it.
#include <gtest/gtest.h>
#include <ole2.h>

#include <map>
#include <set>

#include "orvexcommon/AddLidarChoice.h"
#include "orvexcommon/OptionItems.h"
#include "support/Text.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"
#include "support/registration/testing/RegistrySandbox_win.h"

namespace orvex {
namespace {

using testing::RegistrySandbox;

constexpr GUID kLibrary{0xE907CC98, 0x8B74, 0x46C9, {0x95, 0xBC, 0xAF, 0xCC, 0x42, 0x32, 0x70, 0x53}};
constexpr const wchar_t* kLibraryKey = L"TypeLib\\{E907CC98-8B74-46C9-95BC-AFCC42327053}";
constexpr const wchar_t* kApplicationKey = L"AppID\\{1CD29C65-3920-48E3-9455-52EECBC82E2C}";
constexpr const wchar_t* kModuleKey = L"AppID\\OrvexCommon.DLL";

using Values = std::map<std::string, long>;

const Values kOptionItems = [] {
    const std::pair<const char*, OrvexOptionItem2> items[] = {
#include "OptionItemNames.inc"
    };
    Values values;
    for (const auto& [name, item] : items) {
        values[name] = static_cast<long>(item);
    }
    return values;
}();

const Values kLidarChoices = {{"ADD_LIDAR_READ_ONLY", ADD_LIDAR_READ_ONLY},
                              {"ADD_LIDAR_READ_WRITE", ADD_LIDAR_READ_WRITE},
                              {"ADD_LIDAR_NOT_AT_ALL", ADD_LIDAR_NOT_AT_ALL}};

/// The enumerators of a type of a library; none when it is no enumeration.
Values EnumerationIn(ITypeLib& library, const wchar_t* typeName) {
    std::wstring name = typeName;  // the declaration asks for one that may be written to
    ComPtr<ITypeInfo> type;
    MEMBERID member = 0;
    USHORT count = 1;
    Values values;
    if (FAILED(library.FindName(name.data(), 0, type.Receive(), &member, &count)) || count != 1) {
        return values;
    }
    VARDESC* variable = nullptr;
    for (UINT i = 0; type->GetVarDesc(i, &variable) == S_OK; ++i) {
        BString text;
        UINT names = 0;
        EXPECT_EQ(type->GetNames(variable->memid, text.Receive(), 1, &names), S_OK);
        EXPECT_EQ(variable->varkind, VAR_CONST);
        EXPECT_EQ(variable->lpvarValue->vt, VT_I4);
        values[ToUtf8(TextOf(text.Get()))] = variable->lpvarValue->lVal;
        type->ReleaseVarDesc(variable);
    }
    return values;
}

/// The text of a default value or of a named one; "-" when there is none.
std::wstring TextAt(const RegistryPlace& place, const std::wstring& name) {
    const auto data = ReadRegistryValue(place, name);
    if (!data || data->type != REG_SZ) {
        return L"-";
    }
    return reinterpret_cast<const wchar_t*>(data->bytes.data());
}

class ComEntryPointsWinTest : public ::testing::Test {
  protected:
    ~ComEntryPointsWinTest() override { FreeLibrary(module_); }

    template <typename Function>
    Function Entry(const char* name) const {
        const FARPROC address = GetProcAddress(module_, name);
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    }
    HRESULT Call(const char* name) const { return Entry<HRESULT(STDAPICALLTYPE*)()>(name)(); }
    HRESULT Install(BOOL install, const wchar_t* commandLine) const {
        return Entry<HRESULT(STDAPICALLTYPE*)(BOOL, PCWSTR)>("DllInstall")(install, commandLine);
    }

    ComApartment apartment_;
    HMODULE module_ = LoadLibraryW(L"OrvexCommon.dll");
    RegistrySandbox sandbox_;
    RegistryImage before_ = RegistrySandbox::All();
};

TEST_F(ComEntryPointsWinTest, ARegisteredLibraryIsFoundWithBothEnumerations) {
    ComPtr<ITypeLib> library;
    EXPECT_TRUE(FAILED(LoadRegTypeLib(kLibrary, 1, 0, LOCALE_NEUTRAL, library.Receive())));
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    ASSERT_EQ(Call("DllRegisterServer"), S_OK) << "again";
    ASSERT_EQ(LoadRegTypeLib(kLibrary, 1, 0, LOCALE_NEUTRAL, library.Receive()), S_OK);

    BString name;
    EXPECT_EQ(library->GetDocumentation(-1, name.Receive(), nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(TextOf(name.Get()), L"OrvexCommonLib");
    EXPECT_EQ(kOptionItems.size(), 63U);
    EXPECT_EQ(EnumerationIn(*library.Get(), L"OrvexOptionItem2"), kOptionItems);
    EXPECT_EQ(EnumerationIn(*library.Get(), L"AddLidarChoice"), kLidarChoices);

    EXPECT_EQ(TextAt({HKEY_CLASSES_ROOT, kApplicationKey}, L""), L"OrvexCommon");
    EXPECT_EQ(TextAt({HKEY_CLASSES_ROOT, kModuleKey}, L"AppID"), L"{1CD29C65-3920-48E3-9455-52EECBC82E2C}");
    library = {};

    ASSERT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_TRUE(RegistrySandbox::All() == before_);
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK) << "nothing to remove";
    EXPECT_TRUE(RegistrySandbox::All() == before_);
}

TEST_F(ComEntryPointsWinTest, AUserRegistersForThemselves) {
    ASSERT_EQ(Install(TRUE, L"User"), S_OK);
    const std::wstring classes = L"Software\\Classes\\";
    EXPECT_EQ(TextAt({HKEY_CURRENT_USER, classes + kApplicationKey}, L""), L"OrvexCommon");
    EXPECT_EQ(TextAt({HKEY_CURRENT_USER, classes + kModuleKey}, L"AppID"),
              L"{1CD29C65-3920-48E3-9455-52EECBC82E2C}");
    EXPECT_FALSE(ReadRegistry({HKEY_CLASSES_ROOT, kApplicationKey}).has_value());
    // Wine has one place for the type libraries of all.
    EXPECT_TRUE(ReadRegistry({HKEY_CURRENT_USER, classes + kLibraryKey}).has_value() ||
                ReadRegistry({HKEY_CLASSES_ROOT, kLibraryKey}).has_value());
    ASSERT_EQ(Install(FALSE, L"user"), S_OK);
    EXPECT_TRUE(RegistrySandbox::All() == before_);

    EXPECT_EQ(Install(TRUE, nullptr), S_OK);
    EXPECT_EQ(TextAt({HKEY_CLASSES_ROOT, kApplicationKey}, L""), L"OrvexCommon");
    EXPECT_EQ(Install(FALSE, L""), S_OK);
    EXPECT_EQ(Install(TRUE, L"users"), E_INVALIDARG);
    EXPECT_TRUE(RegistrySandbox::All() == before_);
}

TEST_F(ComEntryPointsWinTest, WhatCannotBeRegisteredWholeIsNotRegistered) {
    // The code is the system's own; that of RegisterTypeLib is another under Wine.
    const struct {
        const wchar_t* refusing;
        std::set<HRESULT> codes;
    } cases[] = {{L"AppID", {HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE)}},
                 {L"TypeLib", {TYPE_E_REGISTRYACCESS, E_FAIL}}};
    for (const auto& c : cases) {
        const RegistryPlace place{HKEY_CLASSES_ROOT, c.refusing};
        const RegistryImage kept = ReadRegistry(place).value();
        RemoveRegistryTree(place);
        RegistrySandbox::CreateVolatile(place);
        const RegistryImage before = RegistrySandbox::All();
        EXPECT_TRUE(c.codes.contains(Call("DllRegisterServer"))) << c.refusing;
        EXPECT_TRUE(RegistrySandbox::All() == before) << c.refusing;
        RestoreRegistry(place, kept);
    }
}

TEST_F(ComEntryPointsWinTest, ThereAreNoClassesAndNothingIsInUse) {
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    void* object = this;
    EXPECT_EQ(Entry<GetClassObject>("DllGetClassObject")(kLibrary, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Entry<GetClassObject>("DllGetClassObject")(kLibrary, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
}

}  // namespace
}  // namespace orvex
