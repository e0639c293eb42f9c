#pragma once

namespace orvex {

/// The objects that the component asks its host for, registered for as long as this lives.
class HostObjectsSetup {
  public:
    HostObjectsSetup();
    ~HostObjectsSetup();
    HostObjectsSetup(const HostObjectsSetup&) = delete;
    HostObjectsSetup& operator=(const HostObjectsSetup&) = delete;
};

}  // namespace orvex
