// The functions that COM and regsvr32 call, and the registration that they ask for.
#include <olectl.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "support/LDataError.h"
#include "support/Log.h"
#include "support/ModuleUse.h"
#include "support/Text.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ModuleFile_win.h"

// Not declared by mingw-w64.
STDAPI DllInstall(BOOL install, PCWSTR commandLine);

namespace {

const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kLibrary = L"TypeLib\\{E907CC98-8B74-46C9-95BC-AFCC42327053}";
const std::wstring kLibraryVersion = kLibrary + L"\\1.0";
const std::wstring kApplicationId = L"{1CD29C65-3920-48E3-9455-52EECBC82E2C}";
const std::wstring kApplication = L"AppID\\" + kApplicationId;
const std::wstring kModule = L"AppID\\OrvexCommon.DLL";

struct Entry {
    std::wstring key;   ///< below kClasses
    std::wstring name;  ///< empty for the default value
    std::wstring text;
};

/// Everything that is registered: the type library, as its IDL file describes it, and the application id. The
/// resource OrvexCommon.rgs states the application id for tools that read registrar scripts. RegisterTypeLib
/// and the system's script registrar (atl.dll) are not used: neither restores the registry when it fails
/// halfway.
std::vector<Entry> Entries() {
    const std::wstring file = orvex::ModuleFile(reinterpret_cast<const void*>(&Entries));
    const std::wstring folder = file.substr(0, file.rfind(L'\\'));
    return {
        {kLibraryVersion, L"", L"OrvexCommon 1.0"},   {kLibraryVersion + L"\\FLAGS", L"", L"0"},
        {kLibraryVersion + L"\\0\\win64", L"", file}, {kLibraryVersion + L"\\HELPDIR", L"", folder},
        {kApplication, L"", L"OrvexCommon"},          {kModule, L"AppID", kApplicationId},
    };
}

void Check(LSTATUS status, const char* call) {
    if (status != ERROR_SUCCESS) {
        throw std::system_error(status, std::system_category(), call);
    }
}

/// The data of a value of any type.
struct RegistryData {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

RegistryData DataOf(const std::wstring& text) {
    const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return {REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)}};
}

/// nullopt if there is no such value.
std::optional<RegistryData> Read(HKEY root, const std::wstring& key, const std::wstring& name) {
    constexpr DWORD kAnyType = RRF_RT_ANY | RRF_NOEXPAND;
    RegistryData data;
    DWORD size = 0;
    const LSTATUS status = RegGetValueW(root, key.c_str(), name.c_str(), kAnyType, nullptr, nullptr, &size);
    if (status == ERROR_FILE_NOT_FOUND) {
        return std::nullopt;
    }
    Check(status, "RegGetValueW");
    data.bytes.resize(size);
    Check(RegGetValueW(root, key.c_str(), name.c_str(), kAnyType, &data.type, data.bytes.data(), &size),
          "RegGetValueW");
    data.bytes.resize(size);
    return data;
}

LSTATUS Write(HKEY root, const std::wstring& key, const std::wstring& name, const RegistryData& data) {
    return RegSetKeyValueW(root, key.c_str(), name.c_str(), data.type, data.bytes.data(),
                           static_cast<DWORD>(data.bytes.size()));
}

/// Changes of the registry that the destructor takes back in reverse order, unless they are kept. Throws
/// std::system_error with the Win32 code when the system refuses one.
class RegistryChanges {
  public:
    /// `root` is a predefined key.
    explicit RegistryChanges(HKEY root) : root_(root) {}
    ~RegistryChanges() {
        for (auto undo = undo_.rbegin(); undo != undo_.rend(); ++undo) {
            if (const LSTATUS status = (*undo)(); status != ERROR_SUCCESS) {
                orvex::LogWarning(L"registration: a change remains, error " + std::to_wstring(status));
            }
        }
    }
    RegistryChanges(const RegistryChanges&) = delete;
    RegistryChanges& operator=(const RegistryChanges&) = delete;

    /// Creates the keys of the path that do not exist.
    void CreateKey(const std::wstring& path) {
        for (std::size_t end = 0; end != std::wstring::npos;) {
            end = path.find(L'\\', end + 1);
            const std::wstring key = path.substr(0, end);
            HKEY opened = nullptr;
            DWORD disposition = 0;
            Check(RegCreateKeyExW(root_, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ, nullptr,
                                  &opened, &disposition),
                  "RegCreateKeyExW");
            RegCloseKey(opened);
            if (disposition == REG_CREATED_NEW_KEY) {
                undo_.emplace_back([root = root_, key] { return RegDeleteKeyW(root, key.c_str()); });
            }
        }
    }

    /// The key exists.
    void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text) {
        const std::optional<RegistryData> old = Read(root_, key, name);
        Check(Write(root_, key, name, DataOf(text)), "RegSetKeyValueW");
        undo_.emplace_back([root = root_, key, name, old] {
            return old ? Write(root, key, name, *old) : RegDeleteKeyValueW(root, key.c_str(), name.c_str());
        });
    }

    void Keep() { undo_.clear(); }

  private:
    HKEY root_;
    std::vector<std::function<LSTATUS()>> undo_;
};

void Register(HKEY root) {
    RegistryChanges changes(root);
    for (const auto& [key, name, text] : Entries()) {
        changes.CreateKey(kClasses + key);
        changes.SetText(kClasses + key, name, text);
    }
    changes.Keep();
}

/// Removes the component's own keys. Keys that do not exist are not an error, so a refused call can be
/// repeated.
void Unregister(HKEY root) {
    for (const std::wstring& key : {kLibraryVersion, kApplication, kModule}) {
        const LSTATUS status = RegDeleteTreeW(root, (kClasses + key).c_str());
        Check(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status, "RegDeleteTreeW");
    }
    // Shared by all versions of the library: the system refuses if there is another one.
    RegDeleteKeyW(root, (kClasses + kLibrary).c_str());
}

/// S_OK or the code of the failure; its text goes to the log.
HRESULT Run(void (*operation)(HKEY root), HKEY root) {
    return orvex::Guarded([&] {
        try {
            const orvex::ModuleUse use;
            operation(root);
            return S_OK;
        } catch (...) {
            orvex::LogWarning(L"registration: " + orvex::CurrentExceptionText());
            throw;
        }
    });
}

}  // namespace

STDAPI DllRegisterServer() {
    return Run(&Register, HKEY_LOCAL_MACHINE);
}

STDAPI DllUnregisterServer() {
    return Run(&Unregister, HKEY_LOCAL_MACHINE);
}

/// The command line "user" (regsvr32 /i:user) registers for the current user, an empty one for the machine.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
    const std::wstring_view scope = commandLine == nullptr ? L"" : commandLine;
    const bool forUser = orvex::EqualNoCase(scope, L"user");
    if (!forUser && !scope.empty()) {
        return E_INVALIDARG;
    }
    return Run(install ? &Register : &Unregister, forUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
}

// The type library describes values only: there are no classes.
STDAPI DllGetClassObject(REFCLSID /*classId*/, REFIID /*interfaceId*/, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return orvex::ModuleUse::Any() ? S_FALSE : S_OK;
}
