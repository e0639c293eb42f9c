#include "host/objects/ClassObject.h"

#include <ole2.h>

#include <bit>
#include <system_error>
#include <thread>

#include "host/objects/HostClassFactory_win.h"
#include "support/com/ComApartment_win.h"
#include "support/com/MtaUsage_win.h"

namespace orvex::host {
namespace {

void ThrowIfFailed(HRESULT result, const char* call) {
    if (FAILED(result)) {
        throw std::system_error(result, std::system_category(), call);
    }
}

HRESULT RegisterFactory(const ClassId& classId, const ComPtr<IClassFactory>& factory, DWORD& token) {
    return CoRegisterClassObject(std::bit_cast<CLSID>(classId), factory.Get(), CLSCTX_INPROC_SERVER,
                                 REGCLS_MULTIPLEUSE, &token);
}

/// A class object in the table of this apartment: objects are made for callers of the same apartment only.
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

/// Does something on a thread of the multithreaded apartment that ends with it.
template <typename Work>
HRESULT InMta(Work work) {
    HRESULT result = S_OK;
    std::thread([&] {
        const ComApartment apartment(COINIT_MULTITHREADED);
        result = FAILED(apartment.Result()) ? apartment.Result() : work();
    }).join();
    return result;
}

/// A class object in the table of the multithreaded apartment, whichever the calling thread is in. No thread
/// stays for it: the table belongs to the apartment, which is kept.
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
            // No thread can be had: the class goes when the apartment does.
        }
    }
    MtaClassObject(const MtaClassObject&) = delete;
    MtaClassObject& operator=(const MtaClassObject&) = delete;

  private:
    MtaUsage usage_;
    DWORD token_ = 0;
};

/// A class that every thread of the multithreaded apartment finds, and the registering thread too.
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
    // Two class objects of one class in one apartment are refused.
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
