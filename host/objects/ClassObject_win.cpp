#include "host/objects/ClassObject.h"

#include <ole2.h>

#include <atomic>
#include <bit>
#include <system_error>
#include <thread>

#include "host/objects/ComServers_win.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComGuard_win.h"

namespace orvex::host {
namespace {

/// Class object whose instances wrap new objects of a factory. Created with one reference. As thread-safe as
/// the factory.
class HostClassFactory final : public IClassFactory {
  public:
    HostClassFactory(HostObjectFactory factory, ServerMaker maker)
        : factory_(std::move(factory)), maker_(maker) {}
    virtual ~HostClassFactory() = default;
    HostClassFactory(const HostClassFactory&) = delete;
    HostClassFactory& operator=(const HostClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override {
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
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    /// E_FAIL if the factory makes nothing, throws, or makes an object of another class.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) override {
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
    /// Without effect: the class stays available as long as the host keeps it registered.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

  private:
    const HostObjectFactory factory_;
    const ServerMaker maker_;
    std::atomic<ULONG> references_ = 1;
};

void ThrowIfFailed(HRESULT result, const char* call) {
    if (FAILED(result)) {
        throw std::system_error(result, std::system_category(), call);
    }
}

HRESULT RegisterFactory(const ClassId& classId, const ComPtr<IClassFactory>& factory, DWORD& token) {
    return CoRegisterClassObject(std::bit_cast<CLSID>(classId), factory.Get(), CLSCTX_INPROC_SERVER,
                                 REGCLS_MULTIPLEUSE, &token);
}

/// Class object registered in this thread's apartment; only callers in that apartment find it.
class RegisteredClassObject final : public ClassObject {
  public:
    RegisteredClassObject(const ClassId& classId, const ComPtr<IClassFactory>& factory) {
        ThrowIfFailed(apartment_.Result(), "CoInitializeEx");
        ThrowIfFailed(RegisterFactory(classId, factory, token_), "CoRegisterClassObject");
    }
    ~RegisteredClassObject() override { CoRevokeClassObject(token_); }
    RegisteredClassObject(const RegisteredClassObject&) = delete;
    RegisteredClassObject& operator=(const RegisteredClassObject&) = delete;

  private:
    ComApartment apartment_;
    DWORD token_ = 0;
};

/// Runs `work` on a temporary thread in the multithreaded apartment.
template <typename Work>
HRESULT InMta(Work work) {
    HRESULT result = S_OK;
    std::thread([&] {
        const ComApartment apartment(COINIT_MULTITHREADED);
        result = FAILED(apartment.Result()) ? apartment.Result() : work();
    }).join();
    return result;
}

/// Class object registered in the multithreaded apartment, from a thread of any apartment. It needs no thread
/// of its own: MtaUsage keeps the apartment alive.
class MtaClassObject final : public ClassObject {
  public:
    MtaClassObject(const ClassId& classId, const ComPtr<IClassFactory>& factory) {
        ThrowIfFailed(usage_.Result(), "CoIncrementMTAUsage");
        ThrowIfFailed(InMta([&] { return RegisterFactory(classId, factory, token_); }),
                      "CoRegisterClassObject");
    }
    ~MtaClassObject() override {
        try {
            InMta([this] { return CoRevokeClassObject(token_); });
        } catch (const std::exception&) {
            // No thread could be started: the class goes with the apartment.
        }
    }
    MtaClassObject(const MtaClassObject&) = delete;
    MtaClassObject& operator=(const MtaClassObject&) = delete;

  private:
    MtaUsage usage_;
    DWORD token_ = 0;
};

/// Class object that the registering thread and all threads of the multithreaded apartment find.
class EverywhereClassObject final : public ClassObject {
  public:
    EverywhereClassObject(const ClassId& classId, const ComPtr<IClassFactory>& factory)
        : elsewhere_(classId, factory) {
        ThrowIfFailed(apartment_.Result(), "CoInitializeEx");
        if (!IsMta()) {
            here_ = std::make_unique<RegisteredClassObject>(classId, factory);
        }
    }

  private:
    // COM refuses a second class object of the same class in an apartment.
    static bool IsMta() {
        APTTYPE type = APTTYPE_STA;
        APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
        return SUCCEEDED(CoGetApartmentType(&type, &qualifier)) && type == APTTYPE_MTA;
    }

    ComApartment apartment_;
    MtaClassObject elsewhere_;
    std::unique_ptr<RegisteredClassObject> here_;
};

}  // namespace

std::unique_ptr<ClassObject> PublishClass(const ClassId& classId, const HostObjectFactory& factory) {
    const ServerKind kind = ServerKindOf(classId);
    if (kind.maker == nullptr) {
        return nullptr;
    }
    const auto classObject = ComPtr<IClassFactory>::Take(new HostClassFactory(factory, kind.maker));
    if (kind.anyThread) {
        return std::make_unique<EverywhereClassObject>(classId, classObject);
    }
    return std::make_unique<RegisteredClassObject>(classId, classObject);
}

}  // namespace orvex::host
