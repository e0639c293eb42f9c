#pragma once
#include <OrvexHost.h>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// The account as a further interface of the application's COM object, which has it always: a user may sign
/// in after it was made. E_NOTIMPL from a host without accounts.
class UserAccountPart final : public PartOf<DispatchPart<IOrvexUserAccount>> {
  public:
    /// `application` outlives the part.
    UserAccountPart(IUnknown& whole, OrvexApplication& application)
        : PartOf(whole), application_(application) {}

    HRESULT STDMETHODCALLTYPE GetAccount(BSTR* userName, BSTR* service, BSTR* token) override;

  private:
    OrvexApplication& application_;
};

}  // namespace orvex::host
