#include "host/objects/tests/foreign/ForeignRaster_win.h"

#include <limits>

namespace orvex::foreign {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class ForeignClass final : public IClassFactory {
  public:
    virtual ~ForeignClass() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override {
        const bool known =
            IsEqualIID(interfaceId, __uuidof(IUnknown)) || IsEqualIID(interfaceId, __uuidof(IClassFactory));
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID interfaceId, void** object) override {
        auto* made = new ForeignRaster;
        const HRESULT result = made->QueryInterface(interfaceId, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

std::atomic<long>& LiveObjects() {
    static std::atomic<long> count = 0;
    return count;
}

IClassFactory& ForeignRasterClass() {
    static IClassFactory& factory = *new ForeignClass;
    return factory;
}

HRESULT ForeignRaster::QueryInterface(REFIID interfaceId, void** object) {
    const bool known = IsEqualIID(interfaceId, __uuidof(IUnknown)) ||
                       IsEqualIID(interfaceId, __uuidof(IDispatch)) ||
                       IsEqualIID(interfaceId, __uuidof(IOrvexRasterInformation));
    *object = known ? static_cast<IOrvexRasterInformation*>(this) : nullptr;
    if (!known) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG ForeignRaster::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT ForeignRaster::Open(BSTR path) {
    path_ = path;
    return path_ == L"fails" ? E_ACCESSDENIED : S_OK;
}

template <typename Value>
HRESULT ForeignRaster::Answer(Value* target, Value plain, Value odd) const {
    if (path_ == L"bare") {
        return E_NOTIMPL;
    }
    *target = path_ == L"odd" ? odd : plain;
    return S_OK;
}

HRESULT ForeignRaster::get_Width(long* pixels) {
    *pixels = path_ == L"no size" ? 0 : 300;
    return S_OK;
}
HRESULT ForeignRaster::get_Height(long* pixels) {
    *pixels = 200;
    return S_OK;
}
HRESULT ForeignRaster::get_PixelWidth(double* units) {
    return Answer(units, 0.25, -0.25);
}
HRESULT ForeignRaster::get_PixelHeight(double* units) {
    return Answer(units, 0.5, kNaN);
}
HRESULT ForeignRaster::get_LinearUnit(BSTR* name) {
    BSTR none = nullptr;
    return Answer(name, path_ == L"plain" ? SysAllocString(L"metre") : none, none);
}
HRESULT ForeignRaster::get_Wkt(BSTR* text) {
    BSTR none = nullptr;
    return Answer(text, path_ == L"plain" ? SysAllocString(L"LOCAL_CS[\"\u00dc\"]") : none, none);
}
HRESULT ForeignRaster::get_ProjectionCode(long* code) {
    const auto thread = static_cast<long>(GetCurrentThreadId());
    return Answer(code, thread, thread);
}
HRESULT ForeignRaster::get_ColorModel(long* model) {
    return Answer(model, 1L, 99L);
}
HRESULT ForeignRaster::get_RasterKind(long* kind) {
    return Answer(kind, 1L, -7L);
}
HRESULT ForeignRaster::get_BandCount(long* count) {
    return Answer(count, 3L, -1L);
}
HRESULT ForeignRaster::get_BitsPerBand(long* bits) {
    return Answer(bits, 8L, 8L);
}
HRESULT ForeignRaster::get_OverviewCount(long* count) {
    return Answer(count, 2L, 2L);
}

HRESULT ForeignRaster::GetExtent(double* minX, double* minY, double* maxX, double* maxY) {
    Answer(minX, 1.0, 1.0);
    Answer(minY, 2.0, kNaN);
    Answer(maxX, 3.0, 3.0);
    return Answer(maxY, 4.0, 4.0);
}

}  // namespace orvex::foreign
