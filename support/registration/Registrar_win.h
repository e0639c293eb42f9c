#pragma once
#include "support/registration/RegistrarScript.h"
#include "support/registration/RegistryJournal_win.h"

namespace orvex {

/// For whom something is registered.
enum class RegistrationScope {
    Machine,  ///< needs the rights of an administrator
    User      ///< HKEY_CLASSES_ROOT of a script is the user's own, Software\Classes
};

/// What HKEY_CLASSES_ROOT stands for in a script.
RegistryPlace ClassesOf(RegistrationScope scope);

/// Writes what the script says. Throws std::system_error.
void ApplyScript(const RegistrarScript& script, RegistrationScope scope, RegistryJournal& journal);

/// Removes what the script has written, and nothing that belongs to others. What is not there is no failure.
/// Throws std::system_error.
void RevertScript(const RegistrarScript& script, RegistrationScope scope, RegistryJournal& journal);

}  // namespace orvex
