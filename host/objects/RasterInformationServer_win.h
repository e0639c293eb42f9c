#pragma once
#include <OrvexHost.h>

#include <memory>

#include "host/objects/DualObject_win.h"
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// COM object around a raster-information object. Lives in any apartment; used by one thread at a time.
class RasterInformationServer final : public DualObject<IOrvexRasterInformation> {
  public:
    explicit RasterInformationServer(std::unique_ptr<OrvexRasterInformation> information)
        : information_(std::move(information)), details_(*this), errors_(*this) {}

    HRESULT STDMETHODCALLTYPE Open(BSTR path) override;
    HRESULT STDMETHODCALLTYPE get_Width(long* pixels) override;
    HRESULT STDMETHODCALLTYPE get_Height(long* pixels) override;
    HRESULT STDMETHODCALLTYPE get_PixelWidth(double* units) override;
    HRESULT STDMETHODCALLTYPE get_PixelHeight(double* units) override;
    HRESULT STDMETHODCALLTYPE get_LinearUnit(BSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_Wkt(BSTR* text) override;
    HRESULT STDMETHODCALLTYPE get_ProjectionCode(long* code) override;
    HRESULT STDMETHODCALLTYPE get_ColorModel(long* model) override;
    HRESULT STDMETHODCALLTYPE get_RasterKind(long* kind) override;
    HRESULT STDMETHODCALLTYPE get_BandCount(long* count) override;
    HRESULT STDMETHODCALLTYPE get_BitsPerBand(long* bits) override;
    HRESULT STDMETHODCALLTYPE get_OverviewCount(long* count) override;
    HRESULT STDMETHODCALLTYPE GetExtent(double* minX, double* minY, double* maxX, double* maxY) override;

  protected:
    void* OtherInterface(REFIID interfaceId) override;

  private:
    class Details final : public PartOf<DispatchPart<IOrvexRasterDetails>> {
      public:
        explicit Details(RasterInformationServer& server) : PartOf(server), server_(server) {}
        HRESULT STDMETHODCALLTYPE get_Detail(BSTR name, long index, VARIANT* value) override;

      private:
        RasterInformationServer& server_;
    };

    HRESULT Number(long* target, std::int32_t RasterProperties::*member) const;
    HRESULT Number(double* target, double RasterProperties::*member) const;

    std::unique_ptr<OrvexRasterInformation> information_;
    RasterProperties properties_;
    bool open_ = false;
    Details details_;
    ErrorSupport<IOrvexRasterInformation> errors_;
};

}  // namespace orvex::host
