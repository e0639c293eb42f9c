#pragma once
#include <filesystem>
#include <memory>

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

}  // namespace orvex::testing
