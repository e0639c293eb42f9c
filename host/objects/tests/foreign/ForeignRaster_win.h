#pragma once
#include <OrvexHost.h>

#include <atomic>
#include <string>

namespace orvex::foreign {

/// Objects of this module that exist.
std::atomic<long>& LiveObjects();

/// A raster-information object as another host might have it: nothing but what it must offer, no details, no
/// reasons, and with the oddities that the path names ("fails", "no size", "odd", "bare"). As code of the
/// projection it tells the thread that it runs on.
class ForeignRaster final : public IOrvexRasterInformation {
  public:
    ForeignRaster() { ++LiveObjects(); }
    virtual ~ForeignRaster() { --LiveObjects(); }
    ForeignRaster(const ForeignRaster&) = delete;
    ForeignRaster& operator=(const ForeignRaster&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

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

  private:
    template <typename Value>
    HRESULT Answer(Value* target, Value plain, Value odd) const;

    std::wstring path_;
    std::atomic<ULONG> references_ = 1;
};

/// Its class object. One for the process, never destroyed.
IClassFactory& ForeignRasterClass();

}  // namespace orvex::foreign
