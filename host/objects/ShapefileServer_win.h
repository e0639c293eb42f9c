#pragma once
#include <OrvexHost.h>

#include <memory>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// COM object around a shapefile object. Lives in any apartment; used by one thread at a time.
class ShapefileServer final : public DualObject<IOrvexShapefile> {
  public:
    explicit ShapefileServer(std::unique_ptr<OrvexShapefile> shapefile)
        : shapefile_(std::move(shapefile)), errors_(*this) {}

    HRESULT STDMETHODCALLTYPE Open(BSTR path) override;
    HRESULT STDMETHODCALLTYPE get_ShapeCount(long* count) override;
    HRESULT STDMETHODCALLTYPE get_ShapeType(long* type) override;
    HRESULT STDMETHODCALLTYPE GetExtent(double* minX, double* minY, double* maxX, double* maxY) override;
    HRESULT STDMETHODCALLTYPE get_FieldCount(long* count) override;
    HRESULT STDMETHODCALLTYPE GetFieldInfo(long index, BSTR* name, long* type) override;

  protected:
    void* OtherInterface(REFIID interfaceId) override;

  private:
    HRESULT Number(long* target, std::int32_t (OrvexShapefile::*property)(std::int32_t&));

    std::unique_ptr<OrvexShapefile> shapefile_;
    ErrorSupport<IOrvexShapefile> errors_;
};

}  // namespace orvex::host
