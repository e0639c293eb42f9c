#include "host/objects/ShapefileServer_win.h"

#include "support/com/ComGuard_win.h"
#include "support/com/ErrorReason_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {

void* ShapefileServer::OtherInterface(REFIID interfaceId) {
    return IsEqualIID(interfaceId, __uuidof(ISupportErrorInfo)) ? static_cast<ISupportErrorInfo*>(&errors_)
                                                                : nullptr;
}

HRESULT ShapefileServer::Open(BSTR path) {
    return Guarded([&] {
        std::wstring reason;
        const HRESULT result = shapefile_->Open(TextOf(path), reason);
        if (FAILED(result)) {
            SetReason(__uuidof(IOrvexShapefile), reason);
        }
        return result;
    });
}

HRESULT ShapefileServer::Number(long* target, std::int32_t (OrvexShapefile::*property)(std::int32_t&)) {
    if (target == nullptr) {
        return E_POINTER;
    }
    *target = 0;
    return Guarded([&] {
        std::int32_t number = 0;
        const HRESULT result = (*shapefile_.*property)(number);
        *target = SUCCEEDED(result) ? number : 0;
        return result;
    });
}

HRESULT ShapefileServer::get_ShapeCount(long* count) {
    return Number(count, &OrvexShapefile::GetShapeCount);
}
HRESULT ShapefileServer::get_ShapeType(long* type) {
    return Number(type, &OrvexShapefile::GetShapeType);
}
HRESULT ShapefileServer::get_FieldCount(long* count) {
    return Number(count, &OrvexShapefile::GetFieldCount);
}

HRESULT ShapefileServer::GetExtent(double* minX, double* minY, double* maxX, double* maxY) {
    double* const targets[] = {minX, minY, maxX, maxY};
    for (double* target : targets) {
        if (target == nullptr) {
            return E_POINTER;
        }
        *target = 0;
    }
    return Guarded([&] {
        std::array<double, 4> extent{};
        const HRESULT result = shapefile_->GetExtent(extent);
        for (std::size_t i = 0; SUCCEEDED(result) && i < extent.size(); ++i) {
            *targets[i] = extent[i];
        }
        return result;
    });
}

HRESULT ShapefileServer::GetFieldInfo(long index, BSTR* name, long* type) {
    if (name == nullptr || type == nullptr) {
        return E_POINTER;
    }
    *name = nullptr;
    *type = 0;
    return Guarded([&] {
        std::wstring text;
        std::int32_t code = 0;
        const HRESULT result = shapefile_->GetFieldInfo(index, text, code);
        if (SUCCEEDED(result)) {
            *name = BString(text).Detach();
            *type = code;
        }
        return result;
    });
}

}  // namespace orvex::host
