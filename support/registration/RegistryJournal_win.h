#pragma once
#include <functional>
#include <string>
#include <vector>

#include "support/registration/RegistryImage_win.h"

namespace orvex {

/// Changes to the registry that are taken back when the journal is destroyed before Keep. Every operation
/// throws std::system_error with the Win32 code when the system refuses.
class RegistryJournal {
  public:
    RegistryJournal() = default;
    ~RegistryJournal();
    RegistryJournal(const RegistryJournal&) = delete;
    RegistryJournal& operator=(const RegistryJournal&) = delete;

    /// Makes the key if it is not there; the one above it must be.
    void CreateKey(const RegistryPlace& place);
    void SetValue(const RegistryPlace& place, const std::wstring& name, const RegistryData& data);
    /// None is no failure.
    void RemoveValue(const RegistryPlace& place, const std::wstring& name);
    /// Removes a key with all that is in it; none is no failure.
    void RemoveTree(const RegistryPlace& place);
    /// Makes sure that a key will be as it is now, or absent if it is, whoever changes it meanwhile.
    void Remember(const RegistryPlace& place);
    /// Lets the changes stand.
    void Keep() { undo_.clear(); }

  private:
    void RememberValue(const RegistryPlace& place, const std::wstring& name);

    std::vector<std::function<void()>> undo_;
};

}  // namespace orvex
