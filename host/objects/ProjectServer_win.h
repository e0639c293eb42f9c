#pragma once
#include <OrvexHost.h>

#include <memory>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// The project as a further interface of the application's COM object. Lives in that object's apartment.
class ProjectPart final : public PartOf<DispatchPart<IOrvexProject>> {
  public:
    ProjectPart(IUnknown& application, std::unique_ptr<OrvexProject> project)
        : PartOf(application), project_(std::move(project)) {}

    HRESULT STDMETHODCALLTYPE GetPhotoFolder(BSTR* folder) override;
    HRESULT STDMETHODCALLTYPE OpenLayer(BSTR path, IOrvexLayer** layer) override;

  private:
    std::unique_ptr<OrvexProject> project_;
};

}  // namespace orvex::host
