#pragma once
#include <OrvexHost.h>

#include <memory>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// An application object as COM sees it.
class ApplicationServer final : public DualObject<IOrvexApplication> {
  public:
    explicit ApplicationServer(std::unique_ptr<OrvexApplication> application)
        : application_(std::move(application)) {}

    HRESULT STDMETHODCALLTYPE GetProjectFolder(BSTR* folder) override;
    HRESULT STDMETHODCALLTYPE GetOptionItem(long item, VARIANT* value) override;

  private:
    std::unique_ptr<OrvexApplication> application_;
};

}  // namespace orvex::host
