#include "host/objects/HostClassFactory_win.h"

#include "host/objects/ApplicationServer_win.h"
#include "host/objects/RasterInformationServer_win.h"
#include "host/objects/SystemSettingsServer_win.h"
#include "support/com/ComGuard_win.h"

namespace orvex::host {
namespace {

template <typename Interface, typename Server>
ComPtr<IDispatch> MakeServer(std::unique_ptr<HostObject> object) {
    auto* wanted = dynamic_cast<Interface*>(object.get());
    if (wanted == nullptr) {
        return {};
    }
    static_cast<void>(object.release());  // the same object, now owned through its interface
    std::unique_ptr<Interface> owned(wanted);
    return ComPtr<IDispatch>::Take(new Server(std::move(owned)));
}

}  // namespace

ServerKind ServerKindOf(const ClassId& classId) {
    if (classId == kSystemSettingsClass) {
        return {&MakeServer<OrvexSystemSettings, SystemSettingsServer>};
    }
    if (classId == kApplicationClass) {
        return {&MakeServer<OrvexApplication, ApplicationServer>};
    }
    if (classId == kRasterInformationClass) {
        return {.maker = &MakeServer<OrvexRasterInformation, RasterInformationServer>, .anyThread = true};
    }
    return {};
}

HRESULT HostClassFactory::QueryInterface(REFIID interfaceId, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    const bool known =
        IsEqualIID(interfaceId, __uuidof(IUnknown)) || IsEqualIID(interfaceId, __uuidof(IClassFactory));
    *object = known ? static_cast<IClassFactory*>(this) : nullptr;
    if (!known) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG HostClassFactory::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT HostClassFactory::CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
        return CLASS_E_NOAGGREGATION;
    }
    return Guarded([&] {
        const ComPtr<IDispatch> server = maker_(factory_());
        return server ? server->QueryInterface(interfaceId, object) : E_FAIL;
    });
}

// The class is there for as long as the host keeps it registered, whoever has it locked.
HRESULT HostClassFactory::LockServer(BOOL /*lock*/) {
    return S_OK;
}

}  // namespace orvex::host
