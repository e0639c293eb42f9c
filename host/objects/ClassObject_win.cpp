#include "host/objects/ClassObject.h"

#include <ole2.h>

#include <bit>
#include <system_error>

#include "host/objects/HostClassFactory_win.h"
#include "support/com/ComApartment_win.h"

namespace orvex::host {
namespace {

void ThrowIfFailed(HRESULT result, const char* call) {
    if (FAILED(result)) {
        throw std::system_error(result, std::system_category(), call);
    }
}

/// A class object in the table of this apartment: objects are made for callers of the same thread only.
class RegisteredClassObject final : public ClassObject {
  public:
    RegisteredClassObject(const ClassId& classId, HostObjectFactory factory, ServerMaker maker) {
        ThrowIfFailed(apartment_.Result(), "CoInitializeEx");
        const auto object = ComPtr<IClassFactory>::Take(new HostClassFactory(std::move(factory), maker));
        ThrowIfFailed(CoRegisterClassObject(std::bit_cast<CLSID>(classId), object.Get(), CLSCTX_INPROC_SERVER,
                                            REGCLS_MULTIPLEUSE, &token_),
                      "CoRegisterClassObject");
    }
    ~RegisteredClassObject() override { CoRevokeClassObject(token_); }
    RegisteredClassObject(const RegisteredClassObject&) = delete;
    RegisteredClassObject& operator=(const RegisteredClassObject&) = delete;

  private:
    ComApartment apartment_;
    DWORD token_ = 0;
};

}  // namespace

std::unique_ptr<ClassObject> PublishClass(const ClassId& classId, const HostObjectFactory& factory) {
    const ServerMaker maker = ServerMakerOf(classId);
    if (maker == nullptr) {
        return nullptr;
    }
    return std::make_unique<RegisteredClassObject>(classId, factory, maker);
}

}  // namespace orvex::host
