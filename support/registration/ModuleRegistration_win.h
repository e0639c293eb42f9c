#pragma once
#include "support/registration/Registrar_win.h"

namespace orvex {

/// Registers what a module brings in its resources: the keys of its registrar script (type REGISTRY) and its
/// type library (type TYPELIB, number 1). All of it or nothing. Unregistering what is not registered is no
/// failure.
class ModuleRegistration {
  public:
    /// `address` lies in the module. Throws LDataError for a script that cannot be read, std::system_error
    /// when a resource is missing.
    ModuleRegistration(const void* address, int scriptResource);

    /// Both throw std::system_error with the system's code: a Win32 code, or an HRESULT of the type
    /// library's.
    void Register(RegistrationScope scope) const;
    void Unregister(RegistrationScope scope) const;

  private:
    std::wstring file_;
    RegistrarScript script_;
};

}  // namespace orvex
