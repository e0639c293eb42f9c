#pragma once
#include <ole2.h>

#include <atomic>

#include "support/com/ComPtr_win.h"

namespace orvex::host {

/// Type information of a dual interface, from the type library that is embedded in this module.
HRESULT HostTypeInfo(REFIID interfaceId, ComPtr<ITypeInfo>& info);

/// IDispatch half of a dual interface, implemented by its type information.
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

/// COM object with a dual interface. Created with one reference, which belongs to its creator.
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
    /// Further interface of the object (a PartOf); null if it has none of that id.
    virtual void* OtherInterface(REFIID /*interfaceId*/) { return nullptr; }

  private:
    std::atomic<ULONG> references_ = 1;
};

/// Further interface of a COM object: a member that shares its identity and its reference count.
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

/// States that failures of an object's main interface leave their reasons in the thread's error info.
template <typename Interface>
class ErrorSupport final : public PartOf<ISupportErrorInfo> {
  public:
    using PartOf::PartOf;
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID interfaceId) override {
        return IsEqualIID(interfaceId, __uuidof(Interface)) ? S_OK : S_FALSE;
    }
};

}  // namespace orvex::host
