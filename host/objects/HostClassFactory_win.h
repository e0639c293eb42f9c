#pragma once
#include <ole2.h>

#include <atomic>
#include <memory>

#include "orvexcommon/HostInterfaces.h"
#include "support/com/ComPtr_win.h"

namespace orvex::host {

/// Makes a COM object around a host object; an empty reference when the object is not of the class that is
/// wanted.
using ServerMaker = ComPtr<IDispatch> (*)(std::unique_ptr<HostObject> object);

/// How a class is offered to COM.
struct ServerKind {
    ServerMaker maker = nullptr;  ///< null for a class that this host does not offer
    bool anyThread = false;       ///< made and used on any thread, not only on the one that registered it
};
ServerKind ServerKindOf(const ClassId& classId);

/// The class object of a class: every instance is a new object of the factory. Born with one reference. As
/// safe from several threads as the factory is.
class HostClassFactory final : public IClassFactory {
  public:
    HostClassFactory(HostObjectFactory factory, ServerMaker maker)
        : factory_(std::move(factory)), maker_(maker) {}
    virtual ~HostClassFactory() = default;
    HostClassFactory(const HostClassFactory&) = delete;
    HostClassFactory& operator=(const HostClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;
    /// E_FAIL when the factory makes nothing, throws, or makes an object of another class.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

  private:
    const HostObjectFactory factory_;
    const ServerMaker maker_;
    std::atomic<ULONG> references_ = 1;
};

}  // namespace orvex::host
