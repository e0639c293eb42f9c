// What COM and the registration tools ask of the library, called as they do: by name, after loading it.
#include <gtest/gtest.h>
#include <ole2.h>

#include <map>
#include <utility>
#include <vector>

#include "support/Handle_win.h"
#include "support/Text.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

constexpr GUID kLibrary{0xE907CC98, 0x8B74, 0x46C9, {0x95, 0xBC, 0xAF, 0xCC, 0x42, 0x32, 0x70, 0x53}};
const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kVersionKey = L"TypeLib\\{E907CC98-8B74-46C9-95BC-AFCC42327053}\\1.0";

OpenKey CreateKey(HKEY root, const std::wstring& path, DWORD options = REG_OPTION_NON_VOLATILE) {
    HKEY key = nullptr;
    EXPECT_EQ(
        RegCreateKeyExW(root, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    return OpenKey(key);
}

void SetNumber(HKEY root, const std::wstring& key, DWORD number) {
    EXPECT_EQ(RegSetKeyValueW(root, key.c_str(), L"", REG_DWORD, &number, sizeof(number)), ERROR_SUCCESS);
}

/// A text value; "-" if there is none.
std::wstring TextAt(HKEY root, const std::wstring& key, const std::wstring& name) {
    wchar_t text[1024] = L"-";
    DWORD size = sizeof(text);
    RegGetValueW(root, (kClasses + key).c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

/// Type and bytes of each value by key and name; a key alone stands for itself.
using Contents = std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>>;

void Collect(HKEY parent, const std::wstring& name, const std::wstring& path, Contents& contents) {
    const OpenKey key = CreateKey(parent, name);  // opens it, since it exists
    contents[path];
    wchar_t text[256] = {};
    BYTE bytes[1024] = {};
    DWORD type = REG_NONE, length = 256, size = sizeof(bytes);
    for (DWORD i = 0;
         RegEnumValueW(key.Get(), i, text, &length, nullptr, &type, bytes, &size) == ERROR_SUCCESS; ++i) {
        contents[path + L" : " + text] = {type, {bytes, bytes + size}};
        length = 256;
        size = sizeof(bytes);
    }
    for (DWORD i = 0; RegEnumKeyW(key.Get(), i, text, 256) == ERROR_SUCCESS; ++i) {
        Collect(key.Get(), text, path + L"\\" + text, contents);
    }
}

Contents ContentsOf(HKEY root) {
    Contents contents;
    Collect(root, L"", L"", contents);
    return contents;
}

/// Redirects the machine's, the classes' and the user's root of this process to a key of its own, which looks
/// as if little were registered, until destroyed; then the user's registry is as it was. One at a time.
class RegistrySandbox {
  public:
    RegistrySandbox() {
        // The current user comes last: the other keys are made below the true one.
        Redirect(HKEY_LOCAL_MACHINE, L"\\Machine");
        Redirect(HKEY_CLASSES_ROOT, L"\\Machine\\Software\\Classes");
        Redirect(HKEY_CURRENT_USER, L"\\User");
        for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
            for (const std::wstring parent : {L"AppID", L"TypeLib"}) {
                SetNumber(root, kClasses + parent + L"\\another's", 7);
            }
        }
    }
    ~RegistrySandbox() {
        for (HKEY root : {HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE}) {
            RegOverridePredefKey(root, nullptr);
        }
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS);
    }
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

  private:
    void Redirect(HKEY root, const wchar_t* key) {
        EXPECT_EQ(RegOverridePredefKey(root, CreateKey(HKEY_CURRENT_USER, path_ + key).Get()), ERROR_SUCCESS);
    }

    std::wstring path_ = L"Software\\OrvexTest-" + std::to_wstring(GetCurrentProcessId());
};

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
};

TEST_F(ComEntryPointsWinTest, ARegisteredLibraryIsFoundWithBothEnumerations) {
    const RegistrySandbox sandbox;
    ComPtr<ITypeLib> library;
    EXPECT_TRUE(FAILED(LoadRegTypeLib(kLibrary, 1, 0, LOCALE_NEUTRAL, library.Receive())));
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    ASSERT_EQ(LoadRegTypeLib(kLibrary, 1, 0, LOCALE_NEUTRAL, library.Receive()), S_OK);
    BString name, description;
    EXPECT_EQ(library->GetDocumentation(-1, name.Receive(), description.Receive(), nullptr, nullptr), S_OK);
    EXPECT_EQ(TextOf(name.Get()), L"OrvexCommonLib");
    EXPECT_EQ(TextAt(HKEY_LOCAL_MACHINE, kVersionKey, L""), TextOf(description.Get()));
    EXPECT_EQ(library->GetTypeInfoCount(), 2U);
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_TRUE(FAILED(LoadRegTypeLib(kLibrary, 1, 0, LOCALE_NEUTRAL, library.Receive())));
}

TEST_F(ComEntryPointsWinTest, RegistersForTheMachineOrTheUserAndRemovesItsOwnOnly) {
    const struct {
        const wchar_t* commandLine;
        HKEY root, other;
        bool hasOtherVersion;  ///< of the type library
    } cases[] = {{nullptr, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, false},
                 {L"", HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, true},
                 {L"User", HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, false}};
    for (const auto& c : cases) {
        const RegistrySandbox sandbox;
        if (c.hasOtherVersion) {
            SetNumber(c.root, kClasses + kVersionKey + L"9", 7);
        }
        const Contents before = ContentsOf(c.root), other = ContentsOf(c.other);
        ASSERT_EQ(Install(TRUE, c.commandLine), S_OK);
        ASSERT_EQ(Install(TRUE, c.commandLine), S_OK) << "again";
        const std::wstring id = L"{1CD29C65-3920-48E3-9455-52EECBC82E2C}";
        EXPECT_EQ(TextAt(c.root, L"AppID\\" + id, L""), L"OrvexCommon");
        EXPECT_EQ(TextAt(c.root, L"AppID\\OrvexCommon.DLL", L"AppID"), id);
        const std::wstring file = TextAt(c.root, kVersionKey + L"\\0\\win64", L"");
        EXPECT_EQ(file, TextAt(c.root, kVersionKey + L"\\HELPDIR", L"") + L"\\OrvexCommon.dll");
        EXPECT_EQ(ContentsOf(c.other), other);
        EXPECT_EQ(Install(FALSE, c.commandLine), S_OK);
        EXPECT_EQ(ContentsOf(c.root), before);
        EXPECT_EQ(Install(FALSE, c.commandLine), S_OK) << "nothing to remove";
        EXPECT_EQ(ContentsOf(c.root), before);
        EXPECT_EQ(Install(TRUE, L"users"), E_INVALIDARG);
        EXPECT_EQ(ContentsOf(c.root), before);
    }
}

TEST_F(ComEntryPointsWinTest, ARefusedRegistrationLeavesTheRegistryAsItWas) {
    for (const std::wstring refusing : {L"AppID", L"TypeLib"}) {
        for (const bool isRegistered : {false, true}) {
            const RegistrySandbox sandbox;
            if (isRegistered) {
                EXPECT_EQ(Call("DllRegisterServer"), S_OK);
                SetNumber(HKEY_LOCAL_MACHINE, kClasses + kVersionKey, 7);
            } else {
                RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\TypeLib");
            }
            // Lasting keys cannot be created in a volatile one.
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + refusing).c_str());
            CreateKey(HKEY_LOCAL_MACHINE, kClasses + refusing, REG_OPTION_VOLATILE);
            const Contents before = ContentsOf(HKEY_LOCAL_MACHINE);
            EXPECT_EQ(Call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
            EXPECT_EQ(ContentsOf(HKEY_LOCAL_MACHINE), before) << isRegistered;
        }
    }
}

TEST_F(ComEntryPointsWinTest, ThereAreNoClassesAndNothingIsInUse) {
    EXPECT_NE(FindResourceW(module_, MAKEINTRESOURCEW(101), L"REGISTRY"), nullptr) << "the registrar script";
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
