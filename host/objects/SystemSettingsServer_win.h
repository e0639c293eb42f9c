#pragma once
#include <OrvexHost.h>

#include <memory>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// A settings object as COM sees it.
class SystemSettingsServer final : public DualObject<IOrvexSystemSettings> {
  public:
    explicit SystemSettingsServer(std::unique_ptr<OrvexSystemSettings> settings)
        : settings_(std::move(settings)) {}

    HRESULT STDMETHODCALLTYPE Get(BSTR section, BSTR key, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE Set(BSTR section, BSTR key, VARIANT value) override;

  private:
    std::unique_ptr<OrvexSystemSettings> settings_;
};

}  // namespace orvex::host
