// What COM and the registration tools ask of the module.
#include <olectl.h>

#include "support/LDataError.h"
#include "support/Log.h"
#include "support/ModuleUse.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComGuard_win.h"
#include "support/registration/ModuleRegistration_win.h"

// Not in any header that mingw-w64 has for programs.
STDAPI DllInstall(BOOL install, PCWSTR commandLine);

namespace {

using orvex::RegistrationScope;

constexpr int kScriptResource = 101;

using Operation = void (orvex::ModuleRegistration::*)(RegistrationScope) const;

/// S_OK, or why it failed: the host's tools show the code, the log has the words.
HRESULT Run(Operation operation, RegistrationScope scope) {
    return orvex::Guarded([&] {
        try {
            const orvex::ModuleUse use;
            const orvex::ComApartment apartment;
            const orvex::ModuleRegistration module(reinterpret_cast<const void*>(&Run), kScriptResource);
            (module.*operation)(scope);
            return S_OK;
        } catch (...) {
            orvex::LogWarning(L"registration: " + orvex::CurrentExceptionText());
            throw;
        }
    });
}

}  // namespace

STDAPI DllRegisterServer() {
    return Run(&orvex::ModuleRegistration::Register, RegistrationScope::Machine);
}

STDAPI DllUnregisterServer() {
    return Run(&orvex::ModuleRegistration::Unregister, RegistrationScope::Machine);
}

/// "user" as the command line, as in regsvr32 /i:user, is for the current user alone; without one it is for
/// the machine.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
    const std::wstring_view scope = commandLine == nullptr ? L"" : commandLine;
    const bool forUser =
        CompareStringOrdinal(scope.data(), static_cast<int>(scope.size()), L"user", -1, TRUE) == CSTR_EQUAL;
    if (!forUser && !scope.empty()) {
        return E_INVALIDARG;
    }
    return Run(install ? &orvex::ModuleRegistration::Register : &orvex::ModuleRegistration::Unregister,
               forUser ? RegistrationScope::User : RegistrationScope::Machine);
}

// The type library describes values only: there is no class to be made.
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
