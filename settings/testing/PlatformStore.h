#pragma once
#include <filesystem>
#include <memory>

#include "settings/RegistryKey.h"

namespace orvex::testing {

/// Takes the right to write from a folder and the files in it until destroyed.
class OrdinaryUser {
  public:
    explicit OrdinaryUser(const std::filesystem::path& folder);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    struct System;
    std::unique_ptr<System> system_;
};

/// The platform's own store over a place that nothing else uses, empty at first and removed in the end: two
/// SQLite files, or a key of the registry. One at a time.
class PlatformStore {
  public:
    PlatformStore();
    ~PlatformStore();
    PlatformStore(const PlatformStore&) = delete;
    PlatformStore& operator=(const PlatformStore&) = delete;

    RegistryStore& Store() { return *store_; }
    /// What another process would find: a store anew over the same place.
    void Reopen();
    /// From now on the machine's root can only be read.
    void DenyMachineWrites();

  private:
    struct System;
    std::unique_ptr<System> system_;
    std::unique_ptr<RegistryStore> store_;
};

}  // namespace orvex::testing
