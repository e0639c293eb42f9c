#pragma once
#include <ole2.h>

#include <atomic>

#include "support/com/ComPtr_win.h"

namespace orvex::host {

/// The type information of a dual interface in the library of the host's objects, which is embedded in this
/// module.
HRESULT HostTypeInfo(REFIID interfaceId, ComPtr<ITypeInfo>& info);

/// The IDispatch half of a dual interface, answered from the type information.
template <typename Interface>
class DispatchPart : public Interface {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info == nullptr) {
            return E_POINTER;
        }
        *info = nullptr;
        ComPtr<ITypeInfo> found;
        const HRESULT result = index == 0 ? HostTypeInfo(__uuidof(Interface), found) : DISP_E_BADINDEX;
        *info = found.Detach();
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        ComPtr<ITypeInfo> info;
        const HRESULT result = HostTypeInfo(__uuidof(Interface), info);
        return FAILED(result) ? result : DispGetIDsOfNames(info.Get(), names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* answer, EXCEPINFO* exception, UINT* wrongArgument) override {
        ComPtr<ITypeInfo> info;
        const HRESULT result = HostTypeInfo(__uuidof(Interface), info);
        return FAILED(result) ? result
                              : DispInvoke(static_cast<Interface*>(this), info.Get(), id, flags, arguments,
                                           answer, exception, wrongArgument);
    }
};

/// A COM object with a dual interface: counts its references, and answers IDispatch from the type
/// information. Born with one reference, which its maker holds.
template <typename Interface>
class DualObject : public DispatchPart<Interface> {
  public:
    DualObject() = default;
    virtual ~DualObject() = default;
    DualObject(const DualObject&) = delete;
    DualObject& operator=(const DualObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        const bool own = IsEqualIID(interfaceId, __uuidof(IUnknown)) ||
                         IsEqualIID(interfaceId, __uuidof(IDispatch)) ||
                         IsEqualIID(interfaceId, __uuidof(Interface));
        *object = own ? static_cast<Interface*>(this) : OtherInterface(interfaceId);
        if (*object == nullptr) {
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

  protected:
    /// A further interface of the object (a PartOf); null when it has no such one.
    virtual void* OtherInterface(REFIID /*interfaceId*/) { return nullptr; }

  private:
    std::atomic<ULONG> references_ = 1;
};

/// A further interface of a COM object: a member of it, with its identity and its references.
template <typename Base>
class PartOf : public Base {
  public:
    explicit PartOf(IUnknown& whole) : whole_(whole) {}
    virtual ~PartOf() = default;
    PartOf(const PartOf&) = delete;
    PartOf& operator=(const PartOf&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override {
        return whole_.QueryInterface(interfaceId, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return whole_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return whole_.Release(); }

  private:
    IUnknown& whole_;
};

}  // namespace orvex::host
