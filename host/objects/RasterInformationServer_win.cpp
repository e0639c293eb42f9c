#include "host/objects/RasterInformationServer_win.h"

#include "support/Text.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ErrorReason_win.h"
#include "support/com/RasterDetailItems.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

HRESULT ReturnText(BSTR* target, bool open, std::wstring_view text) {
    if (target == nullptr) {
        return E_POINTER;
    }
    *target = nullptr;
    return Guarded([&] {
        *target = open ? BString(text).Detach() : nullptr;
        return open ? S_OK : E_FAIL;
    });
}

}  // namespace

void* RasterInformationServer::OtherInterface(REFIID interfaceId) {
    if (IsEqualIID(interfaceId, __uuidof(IOrvexRasterDetails))) {
        return static_cast<IOrvexRasterDetails*>(&details_);
    }
    if (IsEqualIID(interfaceId, __uuidof(ISupportErrorInfo))) {
        return static_cast<ISupportErrorInfo*>(&errors_);
    }
    return nullptr;
}

HRESULT RasterInformationServer::Open(BSTR path) {
    return Guarded([&] {
        open_ = false;
        RasterProperties properties;
        std::wstring reason;
        const HRESULT result = information_->Describe(TextOf(path), properties, reason);
        if (FAILED(result)) {
            SetReason(__uuidof(IOrvexRasterInformation), reason);
            return result;
        }
        properties_ = std::move(properties);
        open_ = true;
        return result;
    });
}

HRESULT RasterInformationServer::Number(long* target, std::int32_t RasterProperties::*member) const {
    if (target == nullptr) {
        return E_POINTER;
    }
    *target = open_ ? properties_.*member : 0;
    return open_ ? S_OK : E_FAIL;
}

HRESULT RasterInformationServer::Number(double* target, double RasterProperties::*member) const {
    if (target == nullptr) {
        return E_POINTER;
    }
    *target = open_ ? properties_.*member : 0;
    return open_ ? S_OK : E_FAIL;
}

HRESULT RasterInformationServer::get_Width(long* pixels) {
    return Number(pixels, &RasterProperties::width);
}
HRESULT RasterInformationServer::get_Height(long* pixels) {
    return Number(pixels, &RasterProperties::height);
}
HRESULT RasterInformationServer::get_PixelWidth(double* units) {
    return Number(units, &RasterProperties::pixelWidth);
}
HRESULT RasterInformationServer::get_PixelHeight(double* units) {
    return Number(units, &RasterProperties::pixelHeight);
}
HRESULT RasterInformationServer::get_LinearUnit(BSTR* name) {
    return ReturnText(name, open_, properties_.linearUnit);
}
HRESULT RasterInformationServer::get_Wkt(BSTR* text) {
    return ReturnText(text, open_, FromUtf8(*properties_.wkt));
}
HRESULT RasterInformationServer::get_ProjectionCode(long* code) {
    return Number(code, &RasterProperties::projectionCode);
}
HRESULT RasterInformationServer::get_ColorModel(long* model) {
    return Number(model, &RasterProperties::colorModel);
}
HRESULT RasterInformationServer::get_RasterKind(long* kind) {
    return Number(kind, &RasterProperties::rasterKind);
}
HRESULT RasterInformationServer::get_BandCount(long* count) {
    return Number(count, &RasterProperties::bands);
}
HRESULT RasterInformationServer::get_BitsPerBand(long* bits) {
    return Number(bits, &RasterProperties::bitsPerBand);
}
HRESULT RasterInformationServer::get_OverviewCount(long* count) {
    return Number(count, &RasterProperties::overviews);
}

HRESULT RasterInformationServer::GetExtent(double* minX, double* minY, double* maxX, double* maxY) {
    double* const targets[] = {minX, minY, maxX, maxY};
    for (double* target : targets) {
        if (target == nullptr) {
            return E_POINTER;
        }
        *target = 0;
    }
    if (!open_ || !properties_.extent) {
        return E_FAIL;
    }
    for (std::size_t i = 0; i < properties_.extent->size(); ++i) {
        *targets[i] = (*properties_.extent)[i];
    }
    return S_OK;
}

HRESULT RasterInformationServer::Details::get_Detail(BSTR name, long index, VARIANT* value) {
    if (value == nullptr) {
        return E_POINTER;
    }
    VariantInit(value);
    return Guarded([&] {
        if (!server_.open_) {
            return E_FAIL;
        }
        Variant(RasterDetail(server_.properties_, TextOf(name), index)).MoveTo(*value);
        return S_OK;
    });
}

}  // namespace orvex::host
